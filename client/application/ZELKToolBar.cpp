#include "ZELKToolBar.h"

#include "ZELKInterfaceLoader.h"
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

QString className()
{
    return QStringLiteral("ZELKLWCMainWindowController");
}

QString text(const char *topic)
{
    return ZELKInterfaceLoader::text(className(), ZELKFormat("%@.%s", {className(), topic}));
}

template <typename Type>
Type *outlet(const QMainWindow &window, const char *name)
{
    return ZELKInterfaceLoader::outlet<Type>(window, className(), name);
}

template <typename Type>
Type *make(QWidget *parent, const char *name)
{
    auto *widget = new Type(parent);
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

QString withKey(const QString &hint, const QKeySequence &key)
{
    return key.isEmpty() ? hint : hint + QStringLiteral(" (%1)").arg(key.toString(QKeySequence::NativeText));
}

} // namespace

ZELKToolBar::ZELKToolBar(QMainWindow &window, const ZELKBundle &bundle)
    : QObject(&window)
    , m_window(window)
    , m_bundle(bundle)
    , m_bar(outlet<QToolBar>(window, "toolBar"))
{
    auto *popUp = make<QComboBox>(m_bar, "filterPopUpButton");
    popUp->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    popUp->setMaxVisibleItems(12);
    popUp->setToolTip(text("range.toolTip"));
    popUp->setAccessibleName(text("range.accessibleName"));
    make<QPushButton>(m_bar, "startStopButton");
}

void ZELKToolBar::fill()
{
    auto *today = outlet<QAction>(m_window, todayAction);
    today->setIcon(ZELKSymbolIcon::icon(m_bundle, QStringLiteral("today")));
    today->setIconVisibleInMenu(false);
    addPopUp();
    addButtons(
        {"actionMonthBackward", "actionDayBackward", todayAction, "actionDayForward", "actionMonthForward"});
    m_bar->addSeparator();
    addButtons({"actionZoomIn", "actionZoomOut"});
    addAgentButton();
}

/// The label and what it names keep together.
void ZELKToolBar::addPopUp()
{
    auto *popUp = outlet<QComboBox>(m_window, "filterPopUpButton");
    auto *label = make<QLabel>(m_bar, "rangeLabel");
    label->setText(text("range"));
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
        addButton(*outlet<QAction>(m_window, action));
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
    auto *space = make<QWidget>(m_bar, "toolBarSpace");
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_bar->addWidget(space);
    auto *button = outlet<QPushButton>(m_window, "startStopButton");
    const auto *action = outlet<QAction>(m_window, "actionStartStop");
    button->setToolTip(withKey(action->toolTip(), action->shortcut()));
    addWidgets("agentChoiceLayout", {button});
    m_controls.append(button);
}
