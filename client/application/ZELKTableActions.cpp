#include "ZELKTableActions.h"

#include "ZELKAssertion.h"
#include "ZELKLWCDateJumpController.h"
#include "ZELKMainWindowInterface.h"

#include <QAction>
#include <QActionGroup>
#include <QHeaderView>
#include <QMenu>

#include <algorithm>

namespace {

using Item = ZELKLWCLogTableController::MenuItem;
using Jump = ZELKLWCDateJumpController::MenuItem;
using ZELKMainWindowInterface::outlet;

/// One of several that exclude each other, in the order given.
QActionGroup *group(QMainWindow &window, const QList<const char *> &names)
{
    auto *group = new QActionGroup(&window);
    for (const char *name : names)
        group->addAction(outlet<QAction>(window, name));
    return group;
}

} // namespace

ZELKTableActions::ZELKTableActions(QMainWindow &window, ZELKLWCLogTableController &table,
                                   ZELKLWCLogTableView &view, ZELKLWCDateJumpController &dateJump)
    : QObject(&window)
    , m_window(window)
    , m_table(table)
    , m_view(view)
    , m_dateJump(dateJump)
    , m_copy(connectAction("actionCopy", &ZELKTableActions::copy))
    , m_selectAll(connectAction("actionSelectAll", &ZELKTableActions::selectAll))
    , m_selectPair(connectAction("actionSelectPair", &ZELKTableActions::selectPair))
    , m_extendToPair(connectAction("actionExtendToPair", &ZELKTableActions::extendToPair))
    , m_jumpToSelection(connectAction("actionJumpToSelection", &ZELKTableActions::jumpToSelection))
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
    QAction *found = outlet<QAction>(m_window, name);
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
    m_contextMenu->addAction(m_jumpToSelection);
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
    m_copy->setEnabled(m_view.validateMenuItem(ZELKLWCLogTableView::MenuItem::Copy));
    m_selectAll->setEnabled(m_table.model().rowCount() > 0);
    m_selectPair->setEnabled(m_table.validateMenuItem(Item::SelectPair));
    m_extendToPair->setEnabled(m_table.validateMenuItem(Item::ExtendSelectionToPair));
    m_jumpToSelection->setEnabled(m_dateJump.validateMenuItem(Jump::JumpToSelection));
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

/// Between the first selected row and the last one; sorted by summary, there may be earlier and later ones.
void ZELKTableActions::jumpToSelection()
{
    m_dateJump.jumpToSelection();
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
