#include "ZELKInspectorWiring.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKLWCInspectorWindow.h"
#include "ZELKLogTable.h"
#include "ZELKMainWindowInterface.h"

#include <QAction>
#include <QMainWindow>
#include <QToolButton>

ZELKInspectorWiring::ZELKInspectorWiring(QMainWindow &window, ZELKApplicationWiring &wiring,
                                         ZELKLogTable &table)
    : QObject(&window)
    , m_window(window)
    , m_view(table.view())
    , m_controller({wiring.dateRange(), table.controller(), wiring.defaults(), m_queue, window})
    , m_action(ZELKMainWindowInterface::outlet<QAction>(window, "actionInspector"))
{
    m_controller.awakeFromNib();
    connect(m_action, &QAction::triggered, this, [this] { zelkGuard([this] { toggle(); }); });
    connect(ZELKMainWindowInterface::outlet<QAction>(window, "actionGoToInspector"), &QAction::triggered,
            this, [this] { zelkGuard([this] { goTo(); }); });
    connect(&m_controller, &ZELKLWCInspectorController::visibleChanged, this,
            [this](bool isVisible) { zelkGuard([&] { showState(isVisible); }); });
}

void ZELKInspectorWiring::toggle()
{
    if (m_controller.isVisible())
        m_controller.hideInformationPanel();
    else
        m_controller.showInformationPanel();
}

/// For those without a mouse: the panel takes the keys only when it is asked to.
void ZELKInspectorWiring::goTo()
{
    m_controller.showInformationPanel();
    m_controller.inspectorWindow().takeKeys();
}

void ZELKInspectorWiring::showState(bool isVisible)
{
    m_action->setText(ZELKMainWindowInterface::text(isVisible ? "inspector.hide" : "inspector"));
    if (auto *button = m_window.findChild<QToolButton *>(QStringLiteral("actionInspectorButton"))) {
        button->setAccessibleName(m_action->text().remove(QLatin1Char('&')));
        button->setDown(isVisible);
    }
    if (!isVisible && m_window.isVisible()) {
        m_window.activateWindow();
        m_view.setFocus();
    }
}
