#pragma once

#include <QProcess>
#include <QStringList>

/// Somebody on the other side of a bus, as a process of its own: calls that block would wait for themselves
/// otherwise. It ends with the object.
///
///   session|system  NAME  text VERSION | number | nothing | error | silent | leave
///   session|system  NAME  unit UNIT LOADSTATE ACTIVESTATE
///
/// A control service that answers so to every call, or a manager that knows one unit. Whatever arrives at
/// setDefaultsWithDictionary is told by nextLine().
class BusPeer
{
public:
    explicit BusPeer(const QStringList &description);
    ~BusPeer();
    /// The peer's next line on its output; empty when none comes.
    QString nextLine();

private:
    QProcess m_process;
};

/// The process itself; for main(), with the arguments after "--peer".
int runBusPeer(const QStringList &description);
