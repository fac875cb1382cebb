#pragma once

#include "ZELKApplicationWiring.h"
#include "ZELKLWCMainWindowController.h"

/// One run of the application in its window. QApplication exists.
class ZELKWindowSession : public QObject
{
    Q_OBJECT

public:
    ZELKWindowSession(const ZELKApplicationSettings &settings, const ZELKApplicationWiring::World &world);

    /// Shows the window; what follows launching follows when it stands, so that a long log does not keep it
    /// waiting.
    void start(bool startsAgent);
    /// After the event loop has ended.
    void applicationWillTerminate() { m_wiring.applicationWillTerminate(); }

    ZELKApplicationWiring &wiring() { return m_wiring; }
    ZELKLWCMainWindowController &mainWindow() { return m_mainWindow; }

private:
    void finishLaunching(bool startsAgent);

    ZELKApplicationWiring m_wiring;
    ZELKLWCMainWindowController m_mainWindow;
};
