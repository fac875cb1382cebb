#include "ZELKInspectorWiring.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKLWCInspectorWindow.h"
#include "ZELKLogTable.h"
#include "ZELKMainWindowInterface.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QToolButton>

ZELKInspectorWiring::ZELKInspectorWiring(QMainWindow &window, ZELKApplicationWiring &wiring,
                                         ZELKLogTable &table)
    : QObject(&window)
    , m_window(window)
    , m_table(table.controller())
    , m_view(table.view())
    , m_controller({wiring.dateRange(), table.controller(), wiring.log(), wiring.defaults(), m_queue, window})
    , m_action(ZELKMainWindowInterface::outlet<QAction>(window, "actionInspector"))
{
    m_controller.awakeFromNib();
    connect(m_action, &QAction::triggered, this, [this] { zelkGuard([this] { toggle(); }); });
    connect(ZELKMainWindowInterface::outlet<QAction>(window, "actionGoToInspector"), &QAction::triggered,
            this, [this] { zelkGuard([this] { goTo(); }); });
    connect(&m_controller, &ZELKLWCInspectorController::visibleChanged, this,
            [this](bool isVisible) { zelkGuard([&] { showState(isVisible); }); });
    m_view.installEventFilter(this);
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
    // Whoever had the keys in the window before the panel took them has them again.
    if (!isVisible && m_window.isVisible() && !m_window.isActiveWindow() &&
        QGuiApplication::applicationState() == Qt::ApplicationActive)
        m_window.activateWindow();
}

/// Escape puts the panel away, once there is no search to give up.
bool ZELKInspectorWiring::eventFilter(QObject *watched, QEvent *event)
{
    bool isDone = false;
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        zelkGuard([&] {
            isDone = m_controller.isVisible() &&
                     !m_table.validateMenuItem(ZELKLWCLogTableController::MenuItem::CancelFilter);
            if (isDone)
                m_controller.hideInformationPanel();
        });
    return isDone || QObject::eventFilter(watched, event);
}
