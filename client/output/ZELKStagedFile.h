#pragma once

#include <QByteArray>
#include <QString>

/// Where a file's content waits until it is whole. Best a file without a name, which is gone when the object
/// is, or the program; where the file system knows none, one with a name that tells what it is, which goes
/// with the object. Errors are left in errno.
class ZELKStagedFile
{
public:
    ZELKStagedFile() = default;
    ~ZELKStagedFile();
    ZELKStagedFile(const ZELKStagedFile &) = delete;
    ZELKStagedFile &operator=(const ZELKStagedFile &) = delete;

    /// In a folder, from which it can come under a name there; false where it cannot.
    bool openBeside(const QString &folder);
    /// In the temporary folder.
    bool openElsewhere();

    /// A name by which this process can open it again.
    QString descriptorPath() const;
    qint64 size() const;
    /// How many bytes were written, which are fewer only after an error.
    qint64 write(const char *data, qint64 size, qint64 offset) const;
    /// The next bytes, `most` at most; null after an error, which the file's end is, too.
    QByteArray read(qint64 offset, qint64 most) const;
    /// Brings it under the path, in one step; false also where there is a file already (EEXIST).
    bool giveName(const QString &path);

private:
    int m_file = -1;
    QByteArray m_name; // empty for one without
};
