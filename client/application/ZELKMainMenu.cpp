#include "ZELKMainMenu.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKDefaultBinding.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKPreferences.h"

#include <QAction>
#include <QEvent>
#include <QMainWindow>
#include <QMenu>
#include <QToolBar>

#include <utility>

ZELKMainMenu::ZELKMainMenu(QMainWindow &window, ZELKApplicationWiring &wiring)
    : QObject(&window)
    , m_window(window)
    , m_wiring(wiring)
    , m_fullScreen(ZELKMainWindowInterface::outlet<QAction>(window, "actionFullScreen"))
    , m_preferences(new ZELKPreferences(window, *wiring.settings().bundle, wiring.defaults()))
{
    connectWindow();
    connectSettings();
    showHintsInStatusBar();
}

template <typename Receiver, typename Function>
void ZELKMainMenu::onTriggered(const char *action, Receiver *receiver, Function function)
{
    connect(ZELKMainWindowInterface::outlet<QAction>(m_window, action), &QAction::triggered, receiver,
            [receiver, function](bool isOn) {
                zelkGuard([&] {
                    if constexpr (std::is_invocable_v<Function, Receiver *, bool>)
                        std::invoke(function, receiver, isOn);
                    else
                        std::invoke(function, receiver);
                });
            });
}

void ZELKMainMenu::connectWindow()
{
    onTriggered("actionClose", &m_window, &QWidget::close);
    onTriggered("actionQuit", &m_window, &QWidget::close);
    onTriggered("actionFullScreen", this, &ZELKMainMenu::setFullScreen);
    onTriggered("actionPreferences", m_preferences, &ZELKPreferences::show);
    m_window.installEventFilter(this);
    QAction *toolBar = ZELKMainWindowInterface::outlet<QToolBar>(m_window, "toolBar")->toggleViewAction();
    toolBar->setText(ZELKMainWindowInterface::text("showToolBar"));
    ZELKMainWindowInterface::outlet<QMenu>(m_window, "viewMenu")->insertAction(m_fullScreen, toolBar);
}

void ZELKMainMenu::connectSettings()
{
    for (const auto &[action, key] :
         {std::pair("actionDetail", "eventDetail"), std::pair("actionRelativeDates", "relativeDates"),
          std::pair("actionHighlight", "highlight")})
        ZELKDefaultBinding::bind(*ZELKMainWindowInterface::outlet<QAction>(m_window, action),
                                 m_wiring.defaults(), QString::fromLatin1(key));
}

/// A hint that was given; without one, an item's own text stands in its place.
void ZELKMainMenu::showHintsInStatusBar()
{
    const auto withoutEnd = [](QString text) { return text.remove(QChar(0x2026)); };
    for (QAction *action : m_window.findChildren<QAction *>())
        if (withoutEnd(action->toolTip()) != withoutEnd(action->text().remove(QLatin1Char('&'))))
            action->setStatusTip(action->toolTip());
}

/// The window manager may do it as well.
bool ZELKMainMenu::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange)
        m_fullScreen->setChecked(m_window.isFullScreen());
    return QObject::eventFilter(watched, event);
}

void ZELKMainMenu::setFullScreen(bool isFull)
{
    m_window.setWindowState(m_window.windowState().setFlag(Qt::WindowFullScreen, isFull));
}
