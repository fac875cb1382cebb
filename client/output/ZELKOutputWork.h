#pragma once

#include "ZELKExportFile.h"

#include <cstdint>
#include <memory>

/// Something for elsewhere while it is made, in slices between which its owner does what else there is to do:
/// it is produced piece by piece, and what goes to a file is then placed there. Who destroys it before it is
/// done has cancelled it; then the file is as it was, unless canBeCancelled() said no. A pipe keeps what it
/// has: isPartlyGone() tells.
class ZELKOutputWork
{
public:
    enum class State : std::uint8_t {
        Producing,
        Placing, ///< what is whole comes to its place
        Done,
        Failed ///< error() says why
    };

    virtual ~ZELKOutputWork() = default;
    ZELKOutputWork(const ZELKOutputWork &) = delete;
    ZELKOutputWork &operator=(const ZELKOutputWork &) = delete;

    /// Goes on for about so long; one piece at least.
    State advance(int milliseconds);
    State state() const { return m_state; }
    /// Not while a file that was there is being written over.
    bool canBeCancelled() const { return !m_file || !m_file->isReplacing(); }
    /// Once a pipe, a device or a descriptor has some of it.
    bool isPartlyGone() const { return m_file && m_file->isPartlyGone(); }
    /// How far it is, from 0 to 1.
    double fraction() const;
    /// Null unless it failed. The system's words then, or empty where it has none.
    QString error() const { return m_error; }

protected:
    /// `file` is null for what goes to no file.
    explicit ZELKOutputWork(std::unique_ptr<ZELKExportFile> file);

    /// Makes the next piece, for which the file is open, and answers what is next: Producing, Placing once
    /// the file has everything, Done where it is to have nothing, or what fail() answers.
    virtual State produce() = 0;
    /// How much is produced, from 0 to 1.
    virtual double producedFraction() const = 0;

    /// There where the constructor was given one.
    ZELKExportFile &file() const { return *m_file; }
    /// Takes the reason, and answers Failed.
    State fail(const QString &error);

private:
    State goOn();
    State place();

    std::unique_ptr<ZELKExportFile> m_file;
    State m_state = State::Producing;
    QString m_error;
};
