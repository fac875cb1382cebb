#include "ZELKTableActions.h"

#include "ZELKAssertion.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLogEntry.h"

#include <QAction>
#include <QActionGroup>
#include <QHeaderView>
#include <QMainWindow>
#include <QMenu>

#include <algorithm>

namespace {

using Item = ZELKLWCLogTableController::MenuItem;

QAction *action(const QMainWindow &window, const char *name)
{
    return ZELKInterfaceLoader::outlet<QAction>(window, QStringLiteral("ZELKLWCMainWindowController"), name);
}

/// One of several that exclude each other, in the order given.
QActionGroup *group(QMainWindow &window, const QList<const char *> &names)
{
    auto *group = new QActionGroup(&window);
    for (const char *name : names)
        group->addAction(action(window, name));
    return group;
}

} // namespace

ZELKTableActions::ZELKTableActions(QMainWindow &window, ZELKLWCLogTableController &table,
                                   ZELKLWCLogTableView &view, ZELKLWCDateRangeController &dateRange)
    : QObject(&window)
    , m_window(window)
    , m_table(table)
    , m_view(view)
    , m_dateRange(dateRange)
    , m_copy(connectAction("actionCopy", &ZELKTableActions::copy))
    , m_selectAll(connectAction("actionSelectAll", &ZELKTableActions::selectAll))
    , m_selectPair(connectAction("actionSelectPair", &ZELKTableActions::selectPair))
    , m_extendToPair(connectAction("actionExtendToPair", &ZELKTableActions::extendToPair))
    , m_showSelectedDays(connectAction("actionShowSelectedDays", &ZELKTableActions::showSelectedDays))
    , m_columns(group(window, {"actionSortByDate", "actionSortBySummary"}))
    , m_directions(group(window, {"actionSortAscending", "actionSortDescending"}))
    , m_contextMenu(new QMenu(&window))
{
    makeContextMenu();
    connectSorting();
    follow();
    validate();
}

QAction *ZELKTableActions::connectAction(const char *name, void (ZELKTableActions::*function)())
{
    QAction *found = action(m_window, name);
    connect(found, &QAction::triggered, this, [this, function] { zelkGuard([&] { (this->*function)(); }); });
    return found;
}

void ZELKTableActions::makeContextMenu()
{
    m_contextMenu->setObjectName(QStringLiteral("contextMenu"));
    m_contextMenu->addAction(m_copy);
    m_contextMenu->addSeparator();
    m_contextMenu->addActions({m_selectPair, m_extendToPair});
    m_contextMenu->addSeparator();
    m_contextMenu->addAction(m_showSelectedDays);
    m_view.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&m_view, &QWidget::customContextMenuRequested, m_contextMenu,
            [this](const QPoint &place) { m_contextMenu->popup(m_view.viewport()->mapToGlobal(place)); });
}

void ZELKTableActions::connectSorting()
{
    for (const QActionGroup *choice : {m_columns, m_directions})
        connect(choice, &QActionGroup::triggered, this, [this] { zelkGuard([this] { sort(); }); });
    showSorting();
}

void ZELKTableActions::follow()
{
    const auto changed = [this] { zelkGuard([this] { validate(); }); };
    const ZELKLWCLogTableModel &model = m_table.model();
    connect(&m_table, &ZELKLWCLogTableController::selectionDidChange, this, changed);
    connect(&model, &QAbstractItemModel::rowsInserted, this, changed);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, changed);
    connect(&model, &ZELKLWCLogTableModel::didRearrange, this, [this] {
        zelkGuard([this] {
            showSorting();
            validate();
        });
    });
}

void ZELKTableActions::validate()
{
    const bool isSelected = m_view.hasSelectedRows();
    m_copy->setEnabled(m_view.validateMenuItem(ZELKLWCLogTableView::MenuItem::Copy));
    m_selectAll->setEnabled(m_table.model().rowCount() > 0);
    m_selectPair->setEnabled(m_table.validateMenuItem(Item::SelectPair));
    m_extendToPair->setEnabled(m_table.validateMenuItem(Item::ExtendSelectionToPair));
    m_showSelectedDays->setEnabled(isSelected);
}

void ZELKTableActions::copy()
{
    m_table.copySelection();
}

void ZELKTableActions::selectAll()
{
    m_view.selectAll();
}

void ZELKTableActions::selectPair()
{
    m_table.selectPair();
}

void ZELKTableActions::extendToPair()
{
    m_table.extendSelectionToPair();
}

/// In whatever order the rows are shown, from the earliest selected entry to the end of the latest.
void ZELKTableActions::showSelectedDays()
{
    std::optional<ZELKLWCAbsoluteDuration> days;
    for (const ZELKRowRange &rows : m_table.selectedRows())
        for (int row = rows.first; row <= rows.last; ++row) {
            const ZELKLWCLogEntry *entry = m_table.model().entryAtRow(row);
            const ZELKDate start = days ? std::min(days->startDate(), entry->date()) : entry->date();
            const ZELKDate end = days ? std::max(days->endDate(), entry->finalDate()) : entry->finalDate();
            days = ZELKLWCAbsoluteDuration::absoluteDurationFromDate(start, end);
        }
    if (days)
        m_dateRange.setAbsoluteDuration(
            std::make_shared<ZELKLWCAbsoluteDuration>(ZELKLWCAbsoluteDuration::absoluteDurationFromDate(
                ZELKLWCDateRangeController::floorDate(days->startDate()),
                ZELKLWCDateRangeController::ceilingDate(days->endDate()))));
}

/// As a click on the header of the column does.
void ZELKTableActions::sort()
{
    const auto column = m_columns->actions().indexOf(m_columns->checkedAction());
    const bool isAscending = m_directions->checkedAction() == m_directions->actions().constFirst();
    m_view.horizontalHeader()->setSortIndicator(int(column),
                                                isAscending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void ZELKTableActions::showSorting()
{
    const ZELKSortDescriptors &order = m_table.sortDescriptors();
    const bool isByDate = order.isEmpty() || order.first().key == ZELKEntryArrangement::dateKey;
    const bool isAscending = order.isEmpty() || order.first().ascending;
    m_columns->actions().at(isByDate ? 0 : 1)->setChecked(true);
    m_directions->actions().at(isAscending ? 0 : 1)->setChecked(true);
}
