#pragma once

#include "ZELKInstalledAgent.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class ZELKEarlierAgent;

/// Installs the agent for all users and removes it. Has to be the administrator's, except below a root of its
/// own. Every operation tells what went wrong, else nothing.
class ZELKInstaller
{
public:
    /// Runs a command of the system and answers its exit status, and what it complained of.
    using Runner = std::function<int(const QStringList &command, QString *complaint)>;
    static int run(const QStringList &command, QString *complaint);

    ZELKInstaller(const ZELKInstalledAgent &place, const Runner &runner)
        : m_place(place)
        , m_runner(runner)
    {
    }

    /// Copies the bundle, which has to be the agent's, and the installer itself, writes the units and the bus
    /// policy, and starts the job. Replaces an older one, which it brings back when it fails; without one, a
    /// failure leaves nothing behind. Touches nothing where the agent's folder could be changed by somebody
    /// else, or where a link stands for one of the files.
    std::optional<QString> install(const QString &bundle, const QString &installer) const;
    /// Stops the job and waits until it has ended; then deletes the units and the bus policy, and when the
    /// bundle has gone the installer too. The agent's folder goes when nothing else is in it.
    std::optional<QString> remove() const;
    /// Deletes the bundle and the units, which is what a request asks for, and returns when the request is
    /// gone or has stood too long. Bus policy and installer stay for remove(): until the job has ended, the
    /// agent has to be reached by whoever asks again.
    std::optional<QString> removeFiles(int millisecondsToWait = 5000) const;
    /// All of it, whoever asks: for an agent that does not answer.
    std::optional<QString> purge() const;

private:
    std::optional<QString> checkBundle(const QString &bundle) const;
    std::optional<QString> checkPlace() const;
    std::optional<QString> replace(const QString &bundle, const QString &installer) const;
    QString bringBack(const ZELKEarlierAgent &earlier, const QString &failure) const;
    std::optional<QString> copyAgent(const QString &bundle, const QString &installer) const;
    std::optional<QString> makeUser() const;
    std::optional<QString> writeFiles() const;
    std::optional<QString> makeLinks() const;
    std::optional<QString> startJob() const;
    std::optional<QString> execute(const QStringList &command) const;
    std::optional<QString> reload() const;
    void forgetFailures() const;
    std::optional<QString> removeJob(const QStringList &more) const;
    std::optional<QString> removeHome() const;
    void waitUntilRequestIsGone(int milliseconds) const;

    ZELKInstalledAgent m_place;
    Runner m_runner;
};
