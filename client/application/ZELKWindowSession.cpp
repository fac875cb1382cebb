#include "ZELKWindowSession.h"

#include "ZELKAssertion.h"

#include <QGuiApplication>
#include <QIcon>
#include <QTimer>

ZELKWindowSession::ZELKWindowSession(const ZELKApplicationSettings &settings,
                                     const ZELKApplicationWiring::World &world)
    : m_wiring(settings, world)
    , m_mainWindow(m_wiring)
{
    QGuiApplication::setQuitOnLastWindowClosed(
        m_wiring.delegate().applicationShouldTerminateAfterLastWindowClosed());
    QGuiApplication::setWindowIcon(
        QIcon(settings.bundle->pathForResource(QStringLiteral("icons/lullwatch"), QStringLiteral("svg"))));
    connect(&m_wiring.store(), &ZELKLWCStore::fetchFinished, this,
            [this] { zelkGuard([this] { takeUpCache(); }); });
}

/// The store brings what it fetched itself into the log; what another program put into the cache, such as an
/// import or a list on the command line, is taken up here.
void ZELKWindowSession::takeUpCache()
{
    if (!m_wiring.store().isFetching())
        m_wiring.store().updateLogEvents();
}

/// Also where there is no agent whose call-backs would make the store look.
void ZELKWindowSession::watchCache()
{
    m_cacheWatcher = std::make_unique<ZELKCacheWatcher>(m_wiring.store().databaseURL().toLocalFile());
    connect(m_cacheWatcher.get(), &ZELKCacheWatcher::cacheDidChange, this,
            [this] { zelkGuard([this] { takeUpCache(); }); });
}

void ZELKWindowSession::start(bool startsAgent)
{
    m_mainWindow.showWindow();
    QTimer::singleShot(0, this, [this, startsAgent] { zelkGuard([&] { finishLaunching(startsAgent); }); });
}

void ZELKWindowSession::applicationWillTerminate()
{
    m_cacheWatcher.reset();
    zelkGuard([this] { m_mainWindow.saveState(); });
    m_wiring.applicationWillTerminate();
}

void ZELKWindowSession::finishLaunching(bool startsAgent)
{
    zelkGuard([this] { m_wiring.applicationDidFinishLaunching(); });
    zelkGuard([this] { m_mainWindow.applicationDidFinishLaunching(); });
    zelkGuard([this] { watchCache(); });
    if (!startsAgent)
        return;
    if (const auto error = m_wiring.startAgentIfAbsent())
        m_mainWindow.presentError(*error);
}
