#include "ZELKSynchronisation.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKCommandLineText.h"

#include <QEventLoop>
#include <QTimer>

#include <utility>

namespace {

/// Without a single event; longer than any answer takes to fail.
constexpr int fetchLimit = 60000;
constexpr int startLimit = 10000;
constexpr int firstEntryLimit = 5000;
constexpr int timeBetweenFetches = 250;

} // namespace

ZELKSynchronisation::ZELKSynchronisation(ZELKApplicationWiring &wiring, Complaint complain)
    : m_wiring(wiring)
    , m_complain(std::move(complain))
{
}

bool ZELKSynchronisation::waitUntil(int milliseconds, const std::function<bool()> &isDone, const Watch &watch,
                                    const std::function<std::uint64_t()> &progress)
{
    if (isDone())
        return true;
    QEventLoop loop;
    watch(loop, [&] {
        zelkGuard([&] {
            if (isDone())
                loop.quit();
        });
    });
    QTimer limit;
    std::uint64_t before = progress();
    QObject::connect(&limit, &QTimer::timeout, &loop, [&] {
        const std::uint64_t now = progress();
        if (std::exchange(before, now) == now)
            loop.quit();
    });
    limit.start(milliseconds);
    loop.exec();
    return isDone();
}

bool ZELKSynchronisation::startAgent()
{
    ZELKAgentController &agent = m_wiring.agentController();
    if (agent.installed())
        return true;
    if (const auto error = m_wiring.startAgentIfAbsent()) {
        m_complain(
            QStringLiteral("%1 %2").arg(error->localisedDescription(), error->underlyingText()).trimmed());
        return false;
    }
    bool wasThere = false;
    const auto answersOrHasEnded = [&] {
        const bool hasEnded = wasThere && !agent.installed();
        wasThere = wasThere || agent.installed();
        return hasEnded || (agent.installed() && agent.enabled());
    };
    waitUntil(startLimit, answersOrHasEnded, [&](QObject &context, const std::function<void()> &look) {
        QObject::connect(&agent, &ZELKAgentController::installedChanged, &context, look);
        QObject::connect(&agent, &ZELKAgentController::enabledChanged, &context, look);
    });
    agent.forgetExpectedStateChange();
    m_hasStarted = agent.installed() && agent.enabled();
    if (!m_hasStarted)
        m_complain(ZELKCommandLineText("The recording agent was started, but does not answer."));
    return m_hasStarted;
}

bool ZELKSynchronisation::fetch()
{
    if (!m_wiring.agentController().installed())
        return true;
    ZELKLWCStore &store = m_wiring.store();
    bool finished = false;
    bool complete = false;
    QObject context;
    QObject::connect(&store, &ZELKLWCStore::fetchFinished, &context, [&](bool all) {
        finished = true;
        complete = all;
    });
    store.sync();
    waitUntil(
        fetchLimit, [&] { return finished; },
        [&](QObject &loop, const std::function<void()> &look) {
            QObject::connect(&store, &ZELKLWCStore::fetchFinished, &loop, look);
        },
        [&] { return store.streamedCount(); });
    if (!complete)
        m_complain(ZELKCommandLineText(
            "The recording agent's events could not be fetched; these are from the cache."));
    else if (m_hasStarted)
        waitForFirstEntry();
    return complete;
}

/// An agent that has just begun records its first events in its own time, and calls only stores that stay.
void ZELKSynchronisation::waitForFirstEntry()
{
    ZELKLWCLog &log = m_wiring.log();
    waitUntil(
        firstEntryLimit, [&] { return log.count() > 0; },
        [&](QObject &context, const std::function<void()> &look) {
            QObject::connect(&log, &ZELKLWCLog::visibleEntriesDidChange, &context, look);
            auto *again = new QTimer(&context);
            QObject::connect(again, &QTimer::timeout, &context,
                             [this] { zelkGuard([this] { m_wiring.store().sync(); }); });
            again->start(timeBetweenFetches);
        });
}
