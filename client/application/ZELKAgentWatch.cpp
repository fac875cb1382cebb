#include "ZELKAgentWatch.h"

#include "ZELKAgentController.h"
#include "ZELKAssertion.h"
#include "ZELKServiceNames.h"

#include <algorithm>

ZELKAgentWatch::ZELKAgentWatch(ZELKAgentController &controller, std::chrono::milliseconds patience)
    : m_controller(controller)
    , m_patience(patience)
{
    m_nextLook.setSingleShot(true);
    connect(&m_nextLook, &QTimer::timeout, this, [this] { zelkGuard([this] { lookAgain(); }); });
    connect(&m_controller, &ZELKAgentController::stateChanged, this,
            [this] { zelkGuard([this] { agentStateChanged(); }); });
}

void ZELKAgentWatch::watchBus(const QDBusConnection &bus)
{
    if (!bus.isConnected())
        return;
    auto watcher = std::make_unique<QDBusServiceWatcher>(
        ZELKServiceNames::controlServiceName(m_controller.agentName()), bus);
    connect(watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                zelkGuard([&] { agentOwnerChanged(!owner.isEmpty()); });
            });
    m_watchers.push_back(std::move(watcher));
}

/// The service of a job that died comes back when the job's manager starts it again. Then nothing has
/// changed, and the controller, which waits for a change, would look without end.
void ZELKAgentWatch::agentOwnerChanged(bool isThere)
{
    const bool works = m_controller.installed() && m_controller.enabled();
    const bool isBack = isThere && m_isAgentMissing;
    if (isBack && works) {
        setMissing(false);
        m_controller.checkForStateChange();
        m_controller.forgetExpectedStateChange();
    }
    const bool isNews = isThere != m_controller.installed() || (isBack && !works);
    if (!isNews || m_controller.isStateChangeExpected())
        return;
    setMissing(!isThere);
    m_controller.expectStateChange();
}

void ZELKAgentWatch::agentStateChanged()
{
    const int state = m_controller.state();
    if (state == ZELKAgentController::Inconsistent || !m_isAgentMissing)
        return;
    setMissing(false);
    if (state != ZELKAgentController::NotInstalled)
        m_controller.forgetExpectedStateChange();
}

void ZELKAgentWatch::setMissing(bool isMissing)
{
    m_isAgentMissing = isMissing;
    if (isMissing)
        m_nextLook.start(m_patience);
    else
        m_nextLook.stop();
}

void ZELKAgentWatch::lookAgain()
{
    m_nextLook.start(std::min(2 * m_nextLook.intervalAsDuration(), mostPatiences * m_patience));
    m_controller.forgetExpectedStateChange();
    m_controller.updateState();
}
