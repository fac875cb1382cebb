#pragma once

#include "ZELKExportFile.h"
#include "ZELKExportSource.h"

#include <memory>

/// One export to a file, in slices between which its owner does what else there is to do. Who destroys it
/// before it is done has cancelled it; then the file is as it was, unless canBeCancelled() said no.
class ZELKFileExport
{
public:
    enum class State : std::uint8_t {
        Producing,
        Placing, ///< what is whole comes to its place
        Done,
        Failed ///< error() says why
    };

    ZELKFileExport(std::unique_ptr<ZELKExportSource> source, std::unique_ptr<ZELKExportFile> file);

    /// Goes on for about so long; one piece at least.
    State advance(int milliseconds);
    State state() const { return m_state; }
    /// Not while a file that was there is being written over.
    bool canBeCancelled() const { return !m_file->isReplacing(); }
    /// How far it is, from 0 to 1.
    double fraction() const;
    const QString &path() const { return m_file->path(); }
    /// The system's words.
    QString error() const;

private:
    void produce();
    void place();

    std::unique_ptr<ZELKExportSource> m_source;
    std::unique_ptr<ZELKExportFile> m_file;
    State m_state = State::Producing;
    int m_error = 0;
};
