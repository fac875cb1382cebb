#pragma once

#include "ZELKApplicationWiring.h"
#include "ZELKCacheWatcher.h"
#include "ZELKLWCMainWindowController.h"

#include <memory>

/// One run of the application in its window. QApplication exists.
class ZELKWindowSession : public QObject
{
    Q_OBJECT

public:
    ZELKWindowSession(const ZELKApplicationSettings &settings, const ZELKApplicationWiring::World &world);

    /// Shows the window; what follows launching follows when it stands, so that a long log does not keep it
    /// waiting.
    void start(bool startsAgent);
    /// After the event loop has ended, in whatever way: nobody need have closed the window.
    void applicationWillTerminate();

    ZELKApplicationWiring &wiring() { return m_wiring; }
    ZELKLWCMainWindowController &mainWindow() { return m_mainWindow; }

private:
    void finishLaunching(bool startsAgent);
    void watchCache();
    void takeUpCache();

    ZELKApplicationWiring m_wiring;
    ZELKLWCMainWindowController m_mainWindow;
    std::unique_ptr<ZELKCacheWatcher> m_cacheWatcher;
};
