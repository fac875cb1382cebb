#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>

/// Writes a file and the folders it stands in.
inline void writeFile(const QString &path, const QByteArray &bytes,
                      QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Truncate)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(mode) || file.write(bytes) != bytes.size())
        qFatal("%s cannot be written", qPrintable(path));
}

/// Empty for a file that is not there.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
