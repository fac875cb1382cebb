#include "ZELKRangeControls.h"

#include "ZELKAssertion.h"
#include "ZELKCustomRange.h"
#include "ZELKElidedLabel.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCLog.h"
#include "ZELKMainWindowInterface.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QMainWindow>
#include <QMenu>
#include <QStandardItemModel>

#include <utility>

namespace {

/// Keys of the presets that are wanted most, by tag.
QKeySequence shortcutOf(int tag)
{
    switch (tag) {
    case 1:
        return Qt::CTRL | Qt::Key_T;
    case 8:
        return Qt::CTRL | Qt::Key_0;
    case ZELKLWCDateRangeController::customTag:
        return Qt::CTRL | Qt::Key_G;
    default:
        return {};
    }
}

QString withoutMnemonic(QString text)
{
    return text.remove(QLatin1Char('&'));
}

} // namespace

ZELKRangeControls::ZELKRangeControls(QMainWindow &window, const ZELKBundle &bundle,
                                     ZELKLWCDateRangeController &dateRange, ZELKLWCLog &log)
    : QObject(&window)
    , m_dateRange(dateRange)
    , m_log(log)
    , m_customRange(new ZELKCustomRange(window, bundle, dateRange))
    , m_filterPopUpButton(ZELKMainWindowInterface::outlet<QComboBox>(window, "filterPopUpButton"))
    , m_rangeMenu(ZELKMainWindowInterface::outlet<QMenu>(window, "rangeMenu"))
    , m_presets(new QActionGroup(this))
    , m_periodLabel(ZELKMainWindowInterface::outlet<ZELKElidedLabel>(window, "periodLabel"))
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
        QAction *action = makePreset(tag);
        m_filterPopUpButton->addItem(withoutMnemonic(action->text()), tag);
        m_rangeMenu->insertAction(before, action);
    }
    m_rangeMenu->insertSeparator(before);
    connect(m_filterPopUpButton, &QComboBox::activated, this,
            [this](int index) { zelkGuard([&] { take(m_filterPopUpButton->itemData(index).toInt()); }); });
    connect(m_presets, &QActionGroup::triggered, this,
            [this](const QAction *action) { zelkGuard([&] { take(action->data().toInt()); }); });
}

QAction *ZELKRangeControls::makePreset(int tag)
{
    auto *action = new QAction(
        ZELKInterfaceLoader::text(ZELKMainWindowInterface::className(),
                                  ZELKFormat("%@.range.%d", {ZELKMainWindowInterface::className(), tag})),
        m_presets);
    action->setObjectName(QStringLiteral("actionRange%1").arg(tag));
    action->setCheckable(true);
    action->setData(tag);
    action->setShortcut(shortcutOf(tag));
    return action;
}

/// Custom days are asked for; until they are given, everything stays as it is, the pop-up as well.
void ZELKRangeControls::take(int tag)
{
    if (tag != ZELKLWCDateRangeController::customTag)
        return m_dateRange.takeSelectionTagFrom(tag);
    selectTag(m_dateRange.selectionTag());
    m_customRange->open();
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
        auto *action = ZELKMainWindowInterface::outlet<QAction>(window, name);
        m_moves.append({action, kind});
        if (kind == Action::ZoomIn) // the plus of many keyboards takes another key
            action->setShortcuts({Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal});
        connect(action, &QAction::triggered, this, [this, kind = kind] { zelkGuard([&] { move(kind); }); });
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
        // Without entries there are no other days to choose from.
        const bool can = m_dateRange.validateMenuItem(Action::TakeSelectionTagFrom, tag) &&
                         (tag != ZELKLWCDateRangeController::customTag || m_log.count() > 0);
        action->setEnabled(can);
        if (QStandardItem *item = items ? items->item(m_filterPopUpButton->findData(tag)) : nullptr)
            item->setEnabled(can);
    }
    for (const auto &[action, kind] : m_moves)
        action->setEnabled(m_dateRange.validateAction(kind));
    const auto range = m_dateRange.absoluteDuration();
    m_periodLabel->setFullText(range ? range->periodDescription() : QString());
}
