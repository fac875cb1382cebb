#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <functional>

/// A real agent on the session bus, whose records begin with generated events of the past. It belongs on the
/// private buses of tests/with-private-buses.
class ZELKBenchAgent
{
public:
    explicit ZELKBenchAgent(int events);
    ~ZELKBenchAgent();

    /// Lets the computer end or start, in turn, by its accounting; returns when the agent would tell of it.
    void makeEvent();
    qint64 processIdentifier() const { return m_process.processId(); }

    /// Runs the event loop until `condition`; ends the program where it never comes.
    static void wait(const std::function<bool()> &condition);

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    int settledEvents() const;

    QTemporaryDir m_folder;
    QProcess m_process;
    int m_made = 0;
};
