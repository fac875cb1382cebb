#include "ZELKAgentControls.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKSymbolIcon.h"

#include <QAction>
#include <QPushButton>

using ZELKMainWindowInterface::outlet;

ZELKAgentControls::ZELKAgentControls(QMainWindow &window, ZELKApplicationWiring &wiring)
    : QObject(&window)
    , m_wiring(wiring)
    , m_sheet(window, wiring.agentController())
    , m_button(outlet<QPushButton>(window, "startStopButton"))
    , m_startStop(outlet<QAction>(window, "actionStartStop"))
    , m_update(outlet<QAction>(window, "actionUpdateAgent"))
    , m_fetch(outlet<QAction>(window, "actionFetch"))
    , m_recordSymbol(ZELKSymbolIcon::icon(*wiring.settings().bundle, QStringLiteral("record")))
    , m_stopSymbol(ZELKSymbolIcon::icon(*wiring.settings().bundle, QStringLiteral("stop")))
{
    wiring.agentController().setAlerts(&m_sheet);
    connect(&m_sheet, &ZELKAgentAlertSheet::helpRequested, this,
            [this] { zelkGuard([this] { m_wiring.delegate().openUserGuide(); }); });
    connectActions();
    follow();
    update();
}

ZELKAgentControls::~ZELKAgentControls()
{
    m_wiring.agentController().setAlerts(nullptr);
}

void ZELKAgentControls::connectActions()
{
    connect(m_startStop, &QAction::triggered, this,
            [this] { zelkGuard([this] { m_wiring.agentController().startStop(); }); });
    connect(m_button, &QPushButton::clicked, m_startStop, &QAction::trigger);
    // Chosen from the menu it needs no further question; offers are made once for each launch.
    connect(m_update, &QAction::triggered, this,
            [this] { zelkGuard([this] { m_wiring.agentController().updateAgent(); }); });
    connect(m_fetch, &QAction::triggered, this, [this] { zelkGuard([this] { m_wiring.store().sync(); }); });
}

void ZELKAgentControls::follow()
{
    const ZELKAgentController &agent = m_wiring.agentController();
    const auto changed = [this] { zelkGuard([this] { update(); }); };
    connect(&agent, &ZELKAgentController::installedChanged, this, changed);
    connect(&agent, &ZELKAgentController::enabledChanged, this, changed);
    connect(&agent, &ZELKAgentController::canUpdateChanged, this, changed);
}

void ZELKAgentControls::update()
{
    const ZELKAgentController &agent = m_wiring.agentController();
    const bool can = m_wiring.settings().knowsAgent() && agent.enabled();
    const QString label = agent.localisedStartStopLabel();
    m_button->setText(label);
    m_button->setIcon(agent.installed() ? m_stopSymbol : m_recordSymbol);
    m_button->setEnabled(can);
    m_startStop->setText(QLatin1Char('&') + label);
    m_startStop->setEnabled(can);
    m_fetch->setEnabled(m_wiring.settings().knowsAgent() && agent.installed());
    m_update->setEnabled(can && agent.canUpdate());
}
