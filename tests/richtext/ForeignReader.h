#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

/// Programs of others that read what we wrote; tests that need one are skipped where it is not installed.
namespace ForeignReader {

inline bool isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

/// What it prints; nothing when it fails.
inline QByteArray output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    const bool isDone = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
    return isDone && process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

} // namespace ForeignReader
