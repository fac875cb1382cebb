#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <optional>
#include <vector>

/// The processes of the machine, read from a folder that is laid out like /proc. What cannot be read is not
/// there.
class ZELKProcessTable
{
public:
    struct Process
    {
        qint64 parent = 0;
        uint userIdentifier = 0; ///< the real one
        quint64 startTime = 0;   ///< clock ticks since boot
        bool hasEnded = false;   ///< only waits to be reaped
    };

    explicit ZELKProcessTable(const QString &folder)
        : m_folder(folder)
    {
    }

    std::vector<qint64> identifiers() const;
    std::optional<Process> process(qint64 identifier) const;
    /// The path of the program that the process runs. " (deleted)" follows it when the file is no longer
    /// there. Empty when it is not to be known: a kernel thread, a zombie, somebody else's process.
    QString executable(qint64 identifier) const;
    /// A variable of the environment that the process was started with; empty when it has none or it is not
    /// to be known.
    QByteArray environmentValue(qint64 identifier, const QByteArray &name) const;

private:
    QString path(qint64 identifier, QLatin1String name) const;

    QString m_folder;
};
