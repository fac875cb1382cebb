#pragma once

#include "ZELKApplicationExtras.h"
#include "ZELKFeedbackController.h"

#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>
#include <utility>

class QWidget;
class ZELKAgentController;
class ZELKBundle;
class ZELKLWCLog;
class ZELKLWCLogSlice;
class ZELKLWCStore;
class ZELKLWCWelcomeController;
class ZELKUserDefaults;

/// Registers the default settings before anything else runs, starts the flow of events when launching has
/// finished, and answers the scripting layer's questions about its keys. Owns none of its outlets.
class ZELKLWClientAppDelegate : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canOpenUserGuide READ canOpenUserGuide NOTIFY canOpenUserGuideChanged)

public:
    explicit ZELKLWClientAppDelegate(QObject *parent = nullptr);

    /// Calls registerDefaults().
    static void initialize(const ZELKBundle &mainBundle, ZELKUserDefaults &defaults);
    /// Registers the bundle's Defaults.plist. Those settings that its array "initialValues" names also become
    /// initial values, to which a bound control reverts. A missing resource raises "%@ Missing
    /// 'Defaults.plist'."; one that cannot be read registers nothing.
    static void registerDefaults(const ZELKBundle &mainBundle, ZELKUserDefaults &defaults);

    QWidget *window() const { return m_window; }
    void setWindow(QWidget *window) { m_window = window; }
    ZELKLWCLog *log() const { return m_log; }
    void setLog(ZELKLWCLog *log) { m_log = log; }
    ZELKLWCStore *store() const { return m_store; }
    void setStore(ZELKLWCStore *store) { m_store = store; }
    ZELKLWCLogSlice *visibleSlice() const { return m_visibleSlice; }
    void setVisibleSlice(ZELKLWCLogSlice *slice) { m_visibleSlice = slice; }
    ZELKLWCWelcomeController *welcomeController() const { return m_welcomeController; }
    void setWelcomeController(ZELKLWCWelcomeController *controller) { m_welcomeController = controller; }
    ZELKAgentController *agentController() const { return m_agentController; }
    void setAgentController(ZELKAgentController *controller) { m_agentController = controller; }

    std::shared_ptr<ZELKApplicationExtras> applicationExtras() const { return m_applicationExtras; }
    void setApplicationExtras(std::shared_ptr<ZELKApplicationExtras> extras)
    {
        m_applicationExtras = std::move(extras);
    }

    /// Offers a portable build to come into the applications menu, reads the cache into the log, asks the
    /// agent for what is new, and lets its controller offer an update.
    void applicationDidFinishLaunching();
    /// Does nothing: each event was cached when it came.
    void applicationWillTerminate() {}
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }

    /// "Lullwatch User Guide.pdf" of the main bundle; empty when it is not there.
    QUrl userGuideURL() const;
    void openUserGuide();
    /// False until launching has finished.
    bool canOpenUserGuide() const { return m_canOpenUserGuide; }

    /// What the sheet for reports needs, set before it is first asked for; nothing takes the sheet away.
    void setFeedbackWorld(const std::optional<ZELKFeedbackController::World> &world);
    /// Made on first use, and kept.
    ZELKFeedbackController &feedbackController();
    /// Opens the sheet for reports on the window.
    void feedback();

    /// True exactly for "database" and "visibleSlice".
    bool applicationDelegateHandlesKey(const QString &key) const;
    /// What scripts know as "database": the log.
    ZELKLWCLog *database() const { return m_log; }

Q_SIGNALS:
    void canOpenUserGuideChanged(bool can);

private:
    QWidget *m_window = nullptr;
    ZELKLWCLog *m_log = nullptr;
    ZELKLWCStore *m_store = nullptr;
    ZELKLWCLogSlice *m_visibleSlice = nullptr;
    ZELKLWCWelcomeController *m_welcomeController = nullptr;
    ZELKAgentController *m_agentController = nullptr;
    std::shared_ptr<ZELKApplicationExtras> m_applicationExtras;
    bool m_canOpenUserGuide = false;
    std::optional<ZELKFeedbackController::World> m_feedbackWorld;
    std::unique_ptr<ZELKFeedbackController> m_feedbackController;
};
