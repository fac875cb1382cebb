#include "ZELKRangeControls.h"

#include "ZELKAssertion.h"
#include "ZELKElidedLabel.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCLog.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QMainWindow>
#include <QMenu>
#include <QStandardItemModel>
#include <QToolButton>

#include <utility>

namespace {

QString className()
{
    return QStringLiteral("ZELKLWCMainWindowController");
}

template <typename Type>
Type *outlet(const QMainWindow &window, const char *name)
{
    return ZELKInterfaceLoader::outlet<Type>(window, className(), name);
}

QString withoutMnemonic(QString text)
{
    return text.remove(QLatin1Char('&'));
}

} // namespace

ZELKRangeControls::ZELKRangeControls(QMainWindow &window, ZELKLWCDateRangeController &dateRange,
                                     ZELKLWCLog &log)
    : QObject(&window)
    , m_dateRange(dateRange)
    , m_filterPopUpButton(outlet<QComboBox>(window, "filterPopUpButton"))
    , m_rangeMenu(outlet<QMenu>(window, "rangeMenu"))
    , m_presets(new QActionGroup(this))
    , m_periodLabel(outlet<ZELKElidedLabel>(window, "periodLabel"))
{
    fillPresets();
    connectMoves(window);
    follow(log);
    selectTag(dateRange.selectionTag());
    validate();
}

void ZELKRangeControls::fillPresets()
{
    QAction *before = m_rangeMenu->actions().value(0);
    for (int tag = 1; tag <= ZELKLWCDateRangeController::customTag; ++tag) {
        const QString title =
            ZELKInterfaceLoader::text(className(), ZELKFormat("%@.range.%d", {className(), tag}));
        m_filterPopUpButton->addItem(withoutMnemonic(title), tag);
        auto *action = new QAction(title, m_presets);
        action->setCheckable(true);
        action->setData(tag);
        m_rangeMenu->insertAction(before, action);
    }
    m_rangeMenu->insertSeparator(before);
    connect(m_filterPopUpButton, &QComboBox::activated, this, [this](int index) {
        zelkGuard([&] { m_dateRange.takeSelectionTagFrom(m_filterPopUpButton->itemData(index).toInt()); });
    });
    connect(m_presets, &QActionGroup::triggered, this, [this](const QAction *action) {
        zelkGuard([&] { m_dateRange.takeSelectionTagFrom(action->data().toInt()); });
    });
}

void ZELKRangeControls::connectMoves(QMainWindow &window)
{
    const std::pair<const char *, Action> moves[] = {{"actionDayBackward", Action::DayBackward},
                                                     {"actionDayForward", Action::DayForward},
                                                     {"actionMonthBackward", Action::MonthBackward},
                                                     {"actionMonthForward", Action::MonthForward},
                                                     {"actionZoomIn", Action::ZoomIn},
                                                     {"actionZoomOut", Action::ZoomOut}};
    for (const auto &[name, kind] : moves) {
        auto *action = outlet<QAction>(window, name);
        m_moves.append({action, kind});
        connect(action, &QAction::triggered, this, [this, kind = kind] { zelkGuard([&] { move(kind); }); });
    }
    // Buttons follow their action in all but the texts, which would not fit.
    for (const auto &[button, action] :
         {std::pair(outlet<QToolButton>(window, "backwardButton"), m_moves.at(0).action),
          std::pair(outlet<QToolButton>(window, "forwardButton"), m_moves.at(1).action)}) {
        connect(button, &QToolButton::clicked, action, &QAction::trigger);
        connect(action, &QAction::changed, button,
                [button = button, action = action] { button->setEnabled(action->isEnabled()); });
    }
}

void ZELKRangeControls::move(Action kind)
{
    switch (kind) {
    case Action::DayBackward:
        return m_dateRange.dayBackward();
    case Action::DayForward:
        return m_dateRange.dayForward();
    case Action::MonthBackward:
        return m_dateRange.monthBackward();
    case Action::MonthForward:
        return m_dateRange.monthForward();
    case Action::ZoomIn:
        return m_dateRange.zoomIn();
    case Action::ZoomOut:
        return m_dateRange.zoomOut();
    case Action::TakeSelectionTagFrom:
    case Action::Other:
        break;
    }
}

void ZELKRangeControls::follow(ZELKLWCLog &log)
{
    const auto validateGuarded = [this] { zelkGuard([this] { validate(); }); };
    connect(&m_dateRange, &ZELKLWCDateRangeController::selectionTagChanged, this,
            [this](int tag) { zelkGuard([&] { selectTag(tag); }); });
    connect(&m_dateRange, &ZELKLWCDateRangeController::absoluteDurationChanged, this, validateGuarded);
    // The bounds may move without the range, with new entries and at midnight.
    connect(&log, &ZELKLWCLog::visibleEntriesDidChange, this, validateGuarded);
    connect(&m_dateRange.passingMidnightTimer(), &ZELKWallClockTimer::fired, this, validateGuarded);
}

void ZELKRangeControls::selectTag(int tag)
{
    m_filterPopUpButton->setCurrentIndex(m_filterPopUpButton->findData(tag));
    for (QAction *action : m_presets->actions())
        action->setChecked(action->data().toInt() == tag);
}

void ZELKRangeControls::validate()
{
    auto *items = qobject_cast<QStandardItemModel *>(m_filterPopUpButton->model());
    for (QAction *action : m_presets->actions()) {
        const int tag = action->data().toInt();
        // A custom range comes about by moving; choosing "Custom" would leave everything as it is.
        const bool can = tag != ZELKLWCDateRangeController::customTag &&
                         m_dateRange.validateMenuItem(Action::TakeSelectionTagFrom, tag);
        action->setEnabled(can);
        if (QStandardItem *item = items ? items->item(m_filterPopUpButton->findData(tag)) : nullptr)
            item->setEnabled(can);
    }
    for (const auto &[action, kind] : m_moves)
        action->setEnabled(m_dateRange.validateAction(kind));
    const auto range = m_dateRange.absoluteDuration();
    m_periodLabel->setFullText(range ? range->periodDescription() : QString());
}
