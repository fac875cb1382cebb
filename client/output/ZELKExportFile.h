#pragma once

#include "ZELKStagedFile.h"

#include <QIODevice>
#include <QString>

#include <cstdint>

/// A file that is exported to. What is written to the device goes to a staged file, which nobody sees; only
/// once it is whole, place() puts it where it was to go:
///
/// - where there is no file yet, under its name, in one step;
/// - into a file that is there, in place, so that it keeps its owner, its permissions and its links. First it
///   is made large enough; while that fails its old content stays. Where the writing fails after that, the
///   file is removed: half of a history must not pass for a whole one;
/// - to a descriptor, or to a device or pipe that a name stands for: as much at a time as it takes. A pipe is
///   waited for while nobody reads it.
///
/// Errors are error numbers (errno).
class ZELKExportFile : public QIODevice
{
public:
    enum class Placing : std::uint8_t { More, Done, Failed };

    explicit ZELKExportFile(const QString &path);
    /// `descriptor` is not owned, and `name` is what it is told of as. A reader that has gone away has seen
    /// what it wanted; SIGPIPE must be ignored.
    ZELKExportFile(int descriptor, const QString &name);
    /// A file that is new and not whole goes; one whose old content is lost already is written to its end.
    ~ZELKExportFile() override;

    /// Begins. False also where it can be seen already that there is no writing to the path.
    bool open();
    /// Where who needs a name can write in place of the device, which this process alone can.
    QString stagedPath() const { return m_staging.descriptorPath(); }
    /// What was written there is what is placed.
    void takeStaged() { m_size = m_staging.size(); }
    /// Brings the next some megabytes of what was written to their place.
    Placing place();
    double placedFraction() const;
    /// Whether an old file's content is being lost.
    bool isReplacing() const { return m_target >= 0 && m_isOurTarget && m_exists && m_isRegular; }

    /// Whether a pipe, a device or a descriptor has some of it, which nobody takes back.
    bool isPartlyGone() const { return m_placed > 0 && !m_isRegular; }

    /// Of the first thing that failed; 0 while nothing has.
    int systemError() const { return m_error; }
    QString systemErrorText() const;

    bool isSequential() const override { return false; }
    qint64 size() const override { return m_size; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool checkPath();
    bool openStaging();
    bool openTarget();
    bool takesMore() const;
    bool copyPiece();
    bool makeRoom(qint64 oldSize);
    bool finishTarget();
    void dropTarget();
    bool fail();

    QString m_path;
    ZELKStagedFile m_staging;
    qint64 m_size = 0;
    bool m_isBeside = false; // the staged file can have the target's name
    bool m_exists = false;
    int m_target = -1;
    bool m_isOurTarget = true;
    bool m_isRegular = false; // never of a descriptor
    bool m_isPipe = false;    // with a name
    qint64 m_placed = 0;
    int m_error = 0;
};
