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
    // The store brings what it fetched itself into the log. What another program put into the cache, such as
    // an import or a list on the command line, is taken up when it looks next.
    connect(&m_wiring.store(), &ZELKLWCStore::fetchFinished, this,
            [this] { zelkGuard([this] { m_wiring.store().updateLogEvents(); }); });
}

void ZELKWindowSession::start(bool startsAgent)
{
    m_mainWindow.showWindow();
    QTimer::singleShot(0, this, [this, startsAgent] { zelkGuard([&] { finishLaunching(startsAgent); }); });
}

void ZELKWindowSession::finishLaunching(bool startsAgent)
{
    // Each step stands for itself: a cache that cannot be read does not keep the agent from being started.
    zelkGuard([this] { m_wiring.applicationDidFinishLaunching(); });
    if (!startsAgent)
        return;
    if (const auto error = m_wiring.startAgentIfAbsent())
        m_mainWindow.presentError(*error);
}
