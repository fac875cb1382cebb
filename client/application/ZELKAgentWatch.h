#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <vector>

class ZELKAgentController;

/// Lets the agent's controller look when the agent comes or goes without its doing: one that was killed, or
/// started from elsewhere, shows at the bus.
///
/// The controller looks ten times a second until the state has settled. Where an agent went that is still
/// said to run, that may be never; then the watch looks itself, less and less often, and at once when the
/// agent shows at the bus again.
class ZELKAgentWatch : public QObject
{
    Q_OBJECT

public:
    /// How long the controller looks for an agent that went.
    static constexpr std::chrono::milliseconds usualPatience = std::chrono::seconds(10);
    /// The longest time between two looks, in patiences.
    static constexpr int mostPatiences = 32;

    /// The controller outlives the watch.
    explicit ZELKAgentWatch(ZELKAgentController &controller,
                            std::chrono::milliseconds patience = usualPatience);

    /// From here on; nothing where the bus is not connected.
    void watchBus(const QDBusConnection &bus);

private:
    void agentOwnerChanged(bool isThere);
    void agentStateChanged();
    void setMissing(bool isMissing);
    void lookAgain();

    ZELKAgentController &m_controller;
    std::chrono::milliseconds m_patience;
    std::vector<std::unique_ptr<QDBusServiceWatcher>> m_watchers;
    bool m_isAgentMissing = false; // its service went, and nobody knows yet whether for good
    QTimer m_nextLook;             // while it is missing
};
