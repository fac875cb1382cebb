#include "ZELKToolBar.h"

#include "ZELKMainWindowInterface.h"
#include "ZELKSymbolIcon.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QToolBar>
#include <QToolButton>

namespace {

constexpr char todayAction[] = "actionRange1";

QString withKey(const QString &hint, const QKeySequence &key)
{
    return key.isEmpty() ? hint : hint + QStringLiteral(" (%1)").arg(key.toString(QKeySequence::NativeText));
}

} // namespace

ZELKToolBar::ZELKToolBar(QMainWindow &window, const ZELKBundle &bundle)
    : QObject(&window)
    , m_window(window)
    , m_bundle(bundle)
    , m_bar(ZELKMainWindowInterface::outlet<QToolBar>(window, "toolBar"))
{
    auto *popUp = ZELKMainWindowInterface::make<QComboBox>(m_bar, "filterPopUpButton");
    popUp->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    popUp->setMaxVisibleItems(12);
    popUp->setToolTip(ZELKMainWindowInterface::text("range.toolTip"));
    popUp->setAccessibleName(ZELKMainWindowInterface::text("range.accessibleName"));
    ZELKMainWindowInterface::make<QPushButton>(m_bar, "startStopButton");
}

void ZELKToolBar::fill()
{
    auto *today = ZELKMainWindowInterface::outlet<QAction>(m_window, todayAction);
    today->setIcon(ZELKSymbolIcon::icon(m_bundle, QStringLiteral("today")));
    today->setIconVisibleInMenu(false);
    addPopUp();
    addButtons(
        {"actionMonthBackward", "actionDayBackward", todayAction, "actionDayForward", "actionMonthForward"});
    m_bar->addSeparator();
    addButtons({"actionZoomIn", "actionZoomOut"});
    m_bar->addSeparator();
    addButtons({"actionInspector"});
    addAgentButton();
    dressOverflow();
}

/// The button that Qt shows where not all have room. Its own symbol is black in the dark, too.
void ZELKToolBar::dressOverflow()
{
    auto *button = m_bar->findChild<QToolButton *>(QStringLiteral("qt_toolbar_ext_button"));
    if (!button)
        return;
    button->setIcon(ZELKSymbolIcon::icon(m_bundle, QStringLiteral("month-forward")));
    button->setToolTip(ZELKMainWindowInterface::text("toolBar.more"));
    button->setAccessibleName(button->toolTip());
}

/// The label and what it names keep together.
void ZELKToolBar::addPopUp()
{
    auto *popUp = ZELKMainWindowInterface::outlet<QComboBox>(m_window, "filterPopUpButton");
    auto *label = ZELKMainWindowInterface::make<QLabel>(m_bar, "rangeLabel");
    label->setText(ZELKMainWindowInterface::text("range"));
    label->setBuddy(popUp);
    addWidgets("rangeChoiceLayout", {label, popUp});
    m_controls.append(popUp);
}

/// In a box of their own, in which they keep their height.
void ZELKToolBar::addWidgets(const char *layoutName, const QList<QWidget *> &widgets)
{
    auto *box = new QWidget(m_bar);
    auto *layout = new QHBoxLayout(box);
    layout->setObjectName(QString::fromLatin1(layoutName));
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    m_bar->addWidget(box);
}

void ZELKToolBar::addButtons(const QList<const char *> &actions)
{
    for (const char *action : actions)
        addButton(*ZELKMainWindowInterface::outlet<QAction>(m_window, action));
}

void ZELKToolBar::addButton(QAction &action)
{
    m_bar->addAction(&action);
    action.setToolTip(withKey(action.toolTip(), action.shortcut()));
    QWidget *button = m_bar->widgetForAction(&action);
    button->setObjectName(action.objectName() + QStringLiteral("Button"));
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(action.text().remove(QLatin1Char('&')));
    m_controls.append(button);
}

void ZELKToolBar::addAgentButton()
{
    auto *space = ZELKMainWindowInterface::make<QWidget>(m_bar, "toolBarSpace");
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_bar->addWidget(space);
    auto *button = ZELKMainWindowInterface::outlet<QPushButton>(m_window, "startStopButton");
    const auto *action = ZELKMainWindowInterface::outlet<QAction>(m_window, "actionStartStop");
    button->setToolTip(withKey(action->toolTip(), action->shortcut()));
    addWidgets("agentChoiceLayout", {button});
    m_controls.append(button);
}
