#pragma once

#include <QIODevice>
#include <QString>

#include <cstdint>

/// A file that is exported to. What is written to the device goes to a file without a name, which nobody sees
/// and which is gone when the object is, or the program; only once it is whole, place() puts it where it was
/// to go:
///
/// - where there is no file yet, under its name, in one step;
/// - into a file that is there, in place, so that it keeps its owner, its permissions and its links. First it
///   is made large enough; while that fails its old content stays. Where the writing fails after that, the
///   file is removed: half of a history must not pass for a whole one;
/// - to a descriptor, or to a device or pipe that a name stands for.
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
    ~ZELKExportFile() override;

    /// Begins. False also where it can be seen already that there is no writing to the path.
    bool open();
    /// Brings the next some megabytes of what was written to their place.
    Placing place();
    double placedFraction() const;

    const QString &path() const { return m_path; }
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
    bool giveName() const;
    bool openTarget();
    bool makeRoom(qint64 oldSize);
    bool finishTarget();
    void dropTarget();
    bool fail();

    QString m_path;
    int m_staging = -1;
    qint64 m_size = 0;
    bool m_isBeside = false; // the file without a name can have the target's
    bool m_exists = false;
    int m_target = -1;
    bool m_isOurTarget = true;
    bool m_isRegular = false;
    qint64 m_placed = 0;
    int m_error = 0;
};
