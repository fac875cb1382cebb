#pragma once

#include <QString>

#include <cstdint>
#include <functional>

class ZELKApplicationWiring;

/// Brings the log up to date for a command that has no event loop of its own. Each step waits until it is
/// done or a limit of time has passed.
class ZELKSynchronisation
{
public:
    /// What went wrong, in a sentence.
    using Complaint = std::function<void(const QString &)>;

    ZELKSynchronisation(ZELKApplicationWiring &wiring, Complaint complain);

    /// Starts the agent unless it is installed, and waits until it answers. False when it does not.
    bool startAgent();
    /// Fetches from the agent that there is, if there is one. False when that failed; what the cache holds is
    /// in the log all the same.
    bool fetch();

private:
    /// True when `isDone` became true before the limit; it is asked after each call of the function that
    /// `watch` is given. The limit begins anew while `progress` answers another number than before.
    using Watch = std::function<void(class QObject &context, const std::function<void()> &look)>;
    static bool waitUntil(
        int milliseconds, const std::function<bool()> &isDone, const Watch &watch,
        const std::function<std::uint64_t()> &progress = [] { return 0; });
    void waitForFirstEntry();

    ZELKApplicationWiring &m_wiring;
    Complaint m_complain;
    bool m_hasStarted = false;
};
