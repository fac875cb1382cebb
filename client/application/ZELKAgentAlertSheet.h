#pragma once

#include "ZELKAgentAlert.h"

#include <QObject>

class QWidget;
class ZELKAgentInstallation;

/// Shows the agent controller's alerts as sheets of a window: modal to it, opened without waiting.
class ZELKAgentAlertSheet : public QObject, public ZELKAgentAlerts
{
    Q_OBJECT

public:
    /// `agent` says what can be installed here. Both must outlive the object; a sheet that still stands when
    /// the window goes does not end any more.
    ZELKAgentAlertSheet(QWidget &window, const ZELKAgentInstallation &agent);

    /// Faults of what the alert is made of raise, and nothing is shown.
    void beginSheet(const ZELKAgentAlert &alert, const EndHandler &ended) override;

Q_SIGNALS:
    void helpRequested(const QString &anchor);

private:
    QWidget &m_window;
    const ZELKAgentInstallation &m_agent;
};
