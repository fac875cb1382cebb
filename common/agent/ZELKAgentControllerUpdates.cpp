// What the controller asks the user: how to install, and whether to update.
#include "ZELKAgentConfiguration.h"
#include "ZELKAgentController.h"

#include <QPointer>

#include <chrono>

using namespace ZELKAgentConfiguration;

namespace {

constexpr int millisecondsAfterLaunching = 1000;

/// Every text is a format for the application's name; `topic` is the middle of its key.
ZELKAgentAlert alert(const char *topic, const QStringList &buttons, const QString &applicationName)
{
    const QString key = className() + QLatin1Char('.') + QLatin1String(topic) + QLatin1Char('.');
    ZELKAgentAlert alert;
    alert.message = ZELKFormat(localised(key + QStringLiteral("message")), {applicationName});
    alert.informative = ZELKFormat(localised(key + QStringLiteral("informative")), {applicationName});
    for (const QString &button : buttons)
        alert.buttons.append(localised(key + QStringLiteral("button.") + button));
    return alert;
}

QString helpAnchor(const QString &key)
{
    const ZELKDictionary &info = mainBundle().infoDictionary();
    return info.contains(QStringLiteral("CFBundleHelpBookName")) ? info.string(key) : QString();
}

} // namespace

void ZELKAgentController::startStop()
{
    if (m_installed)
        stop();
    else
        showInstallAlert();
}

// Installing

void ZELKAgentController::showInstallAlert()
{
    if (m_installAlert || !m_alerts)
        return;
    m_installAlert =
        alert("install", {QStringLiteral("install"), QStringLiteral("skip"), QStringLiteral("cancel")},
              applicationName());
    m_installAlert->helpAnchor = helpAnchor(QStringLiteral("ZELKAgentControllerInstallHelpAnchor"));
    m_installAlert->accessoryInterface = className();
    begin(m_installAlert, [self = QPointer(this)](int returnCode, int locationTag) {
        if (self)
            zelkGuard([&] { self->installAlertDidEnd(returnCode, locationTag); });
    });
}

/// An alert that can not be shown may be asked for again.
void ZELKAgentController::begin(std::optional<ZELKAgentAlert> &alert,
                                const ZELKAgentAlerts::EndHandler &ended)
{
    try {
        m_alerts->beginSheet(*alert, ended);
    } catch (...) {
        alert.reset();
        throw;
    }
}

void ZELKAgentController::installAlertDidEnd(int returnCode, int locationTag)
{
    m_installAlert.reset();
    if (returnCode == ZELKAgentAlert::SecondButton)
        startAndPresent(SessionApplication);
    if (returnCode != ZELKAgentAlert::FirstButton)
        return;
    if (locationTag != ZELKAgentAlert::ForAllUsers && locationTag != ZELKAgentAlert::ForThisUser)
        fail(ZELKFormat("%@ unknown location tag: %d", {className(), locationTag}));
    startAndPresent(locationTag == ZELKAgentAlert::ForAllUsers ? PrivilegedJob : UserJob);
}

void ZELKAgentController::startAndPresent(int state)
{
    if (const auto error = startWithState(state))
        Q_EMIT errorPresented(*error);
}

// Updating

void ZELKAgentController::applicationDidFinishLaunching()
{
    m_updateNotifications = 1;
    if (canUpdate())
        offerUpdateAfter(millisecondsAfterLaunching);
}

void ZELKAgentController::offerUpdateAfter(int milliseconds)
{
    QTimer::singleShot(milliseconds, this, [this] { zelkGuard([this] { update(); }); });
}

void ZELKAgentController::update()
{
    if (canUpdate())
        showUpdateAlert();
}

void ZELKAgentController::showUpdateAlert()
{
    if (m_updateAlert || m_updateNotifications == 0 || !m_alerts)
        return;
    m_updateAlert = alert("update", {QStringLiteral("update"), QStringLiteral("cancel")}, applicationName());
    m_updateAlert->helpAnchor = helpAnchor(QStringLiteral("ZELKAgentControllerUpdateHelpAnchor"));
    begin(m_updateAlert, [self = QPointer(this)](int returnCode, int) {
        if (self)
            zelkGuard([&] { self->updateAlertDidEnd(returnCode); });
    });
}

void ZELKAgentController::updateAlertDidEnd(int returnCode)
{
    m_updateAlert.reset();
    if (m_updateNotifications > 0)
        --m_updateNotifications;
    if (returnCode == ZELKAgentAlert::FirstButton)
        updateAgent();
}

/// An agent of the session takes its time to end, and one that is still there would count as started.
void ZELKAgentController::updateAgent()
{
    if (!canUpdate())
        return;
    const int form = m_state;
    if (stop()) {
        forgetExpectedStateChange();
        return;
    }
    if (isStateChangeExpected())
        m_formToStart = form;
    else
        startAndPresent(form);
}
