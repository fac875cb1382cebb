#include "ZELKLWCLogTableController.h"

#include "BLRoundedTableCell.h"
#include "ZELKArchive.h"
#include "ZELKAssertion.h"
#include "ZELKCapsule.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryFormatter.h"
#include "ZELKNotificationQueue.h"
#include "ZELKSelectionKeeper.h"
#include "ZELKTableHeader.h"
#include "ZELKUserDefaults.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QSignalBlocker>

#include <cmath>

namespace {

const QString didChange = QStringLiteral("ZELKLWCLogTableController.didChange");
const QString selectByDate = QStringLiteral("ZELKLWCLogTableController.selectByDate");
const QString descriptorsKey = QStringLiteral("columnSortDescriptors");
const QString colourKey = QStringLiteral("highlightColour");
const QString highlightKey = QStringLiteral("highlight");
const QString detailKey = QStringLiteral("eventDetail");

QString sortKeyOf(int column)
{
    return column == ZELKLWCLogTableModel::DateColumn ? ZELKEntryArrangement::dateKey
                                                      : ZELKEntryArrangement::summaryKey;
}

} // namespace

ZELKLWCLogTableController::ZELKLWCLogTableController(const Outlets &outlets, QObject *parent)
    : QObject(parent)
    , m_view(outlets.tableView)
    , m_filterField(outlets.filterField)
    , m_log(outlets.log)
    , m_summaryFormatter(outlets.summaryFormatter)
    , m_defaults(outlets.defaults)
    , m_queue(outlets.queue)
    , m_model(outlets.log)
    , m_filterString(QLatin1String(""))
{
    m_model.setFormatters(&outlets.dateFormatter, &outlets.summaryFormatter);
}

ZELKLWCLogTableController::~ZELKLWCLogTableController()
{
    if (m_view.tableDelegate() == this)
        m_view.setTableDelegate(nullptr);
    if (m_view.model() == &m_model)
        m_view.setModel(nullptr);
}

// MARK: waking up

void ZELKLWCLogTableController::awakeFromNib()
{
    followSettings();
    m_highlight = QPersistentModelIndex();
    connect(&m_queue, &ZELKNotificationQueue::posted, this,
            [this](const QString &name) { zelkGuard([&] { notificationPosted(name); }); });
    setFilterString(QLatin1String(""));
    connect(&m_filterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        zelkGuard([&] {
            setFilterString(text);
            filter();
        });
    });
    setUpView();
    adjustRowHeight();
}

void ZELKLWCLogTableController::followSettings()
{
    connect(&m_defaults, &ZELKUserDefaults::valueChanged, this,
            [this](const QString &key) { zelkGuard([&] { settingChanged(key); }); });
    for (const QString &key : {colourKey, highlightKey})
        settingChanged(key);
}

void ZELKLWCLogTableController::setUpView()
{
    m_view.setModel(&m_model);
    m_view.setTableDelegate(this);
    m_view.setItemDelegateForColumn(Column::DateColumn,
                                    new ZELKTextCell(ZELKLWCLogTableModel::attributedTextRole, this));
    const auto background = [this](const QModelIndex &index) {
        return tableViewWillDisplayCell(Column(index.column()), index.row());
    };
    m_view.setItemDelegateForColumn(
        Column::SummaryColumn,
        new BLRoundedTableCell(ZELKLWCLogTableModel::attributedTextRole, background, this));
    m_keeper = std::make_unique<ZELKSelectionKeeper>(m_view, m_model);
    connect(&m_view, &ZELKLWCLogTableView::fontChanged, this,
            [this] { zelkGuard([this] { adjustRowHeight(); }); });
    connect(&m_view, &ZELKLWCLogTableView::doubleAction, this,
            &ZELKLWCLogTableController::doubleClickShowInformationPanel);
    const auto selectionDid = [this] {
        zelkGuard([this] { tableViewSelectionDidChange(); });
        Q_EMIT selectionDidChange();
    };
    connect(m_view.selectionModel(), &QItemSelectionModel::selectionChanged, this, selectionDid);
    // A partner may come, or go, with the rows.
    const auto rowsDid = [this] { zelkGuard([this] { tableViewSelectionDidChange(); }); };
    connect(&m_model, &QAbstractItemModel::rowsInserted, this, rowsDid);
    connect(&m_model, &QAbstractItemModel::rowsRemoved, this, rowsDid);
    connect(&m_model, &ZELKLWCLogTableModel::didRearrange, this, selectionDid);
    setUpHeader();
}

void ZELKLWCLogTableController::setUpHeader()
{
    QHeaderView *header = m_view.horizontalHeader();
    header->setAccessibleName(m_view.accessibleName());
    header->setSortIndicatorShown(true);
    if (auto *aligned = qobject_cast<ZELKTableHeader *>(header))
        aligned->setTextInset([&view = m_view](int column) {
            return column == Column::SummaryColumn ? int(ZELKCapsule::textInset)
                                                   : ZELKTextCell::textInset(*view.style());
        });
    showSortIndicator();
    connect(header, &QHeaderView::sortIndicatorChanged, this,
            [this](int column, Qt::SortOrder order) { zelkGuard([&] { sortByColumn(column, order); }); });
}

// MARK: settings

void ZELKLWCLogTableController::settingChanged(const QString &key)
{
    if (key == colourKey)
        setHighlightColour(ZELKArchive::unarchivedColour(m_defaults.value(colourKey).toByteArray())
                               .value_or(m_highlightColour));
    if (key == highlightKey)
        setHighlightRelated(m_defaults.boolForKey(highlightKey));
    if (key.contains(highlightKey) && m_highlight.isValid())
        redisplay();
    if (key.contains(QLatin1String("relativeDates")))
        redisplay();
    if (key.contains(detailKey)) {
        adjustRowHeight();
        redisplay();
    }
}

void ZELKLWCLogTableController::setHighlightRelated(bool highlightRelated)
{
    if (highlightRelated == m_highlightRelated)
        return;
    m_highlightRelated = highlightRelated;
    tableViewSelectionDidChange();
    Q_EMIT highlightRelatedChanged(highlightRelated);
}

void ZELKLWCLogTableController::setHighlightColour(const QColor &colour)
{
    if (colour == m_highlightColour)
        return;
    m_highlightColour = colour;
    Q_EMIT highlightColourChanged(colour);
}

void ZELKLWCLogTableController::adjustRowHeight()
{
    m_summaryFormatter.setShowDetail(m_defaults.boolForKey(detailKey));
    m_summaryFormatter.setFontScale(m_summaryFormatter.scaleForFont(m_view.font()));
    m_view.setUniformRowHeight(int(std::ceil(m_summaryFormatter.rowHeight())));
}

void ZELKLWCLogTableController::redisplay()
{
    m_view.viewport()->update();
}

// MARK: sorting and filtering

void ZELKLWCLogTableController::restoreSortDescriptors()
{
    if (const auto descriptors =
            ZELKArchive::unarchivedSortDescriptors(m_defaults.value(descriptorsKey).toByteArray()))
        m_model.setSortDescriptors(*descriptors);
    showSortIndicator();
}

void ZELKLWCLogTableController::setSortDescriptors(const ZELKSortDescriptors &descriptors)
{
    m_model.setSortDescriptors(descriptors);
    showSortIndicator();
    m_defaults.setValue(descriptorsKey, ZELKArchive::archivedSortDescriptors(descriptors));
}

/// The log's own order shows as rising dates, which it is.
void ZELKLWCLogTableController::showSortIndicator()
{
    const ZELKSortDescriptor first = sortDescriptors().isEmpty()
                                         ? ZELKSortDescriptor{ZELKEntryArrangement::dateKey, true}
                                         : sortDescriptors().first();
    const QSignalBlocker blocker(m_view.horizontalHeader());
    m_view.horizontalHeader()->setSortIndicator(
        first.key == ZELKEntryArrangement::dateKey ? Column::DateColumn : Column::SummaryColumn,
        first.ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    m_view.horizontalHeader()->viewport()->update();
}

/// The column that was clicked decides first, those before it decide where it does not.
void ZELKLWCLogTableController::sortByColumn(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= ZELKLWCLogTableModel::ColumnCount)
        return;
    ZELKSortDescriptors descriptors{{sortKeyOf(column), order == Qt::AscendingOrder}};
    for (const ZELKSortDescriptor &descriptor : sortDescriptors())
        if (descriptor.key != sortKeyOf(column))
            descriptors.append(descriptor);
    setSortDescriptors(descriptors);
}

void ZELKLWCLogTableController::setFilterString(const QString &filterString)
{
    m_filterString = filterString.isNull() ? QString(QLatin1String("")) : filterString;
    if (m_filterField.text() != m_filterString)
        m_filterField.setText(m_filterString);
}

void ZELKLWCLogTableController::filter()
{
    m_model.setFilterString(m_filterString);
}

void ZELKLWCLogTableController::cancelFilter()
{
    if (!m_filterField.text().isEmpty())
        m_filterField.clear(); // which filters anew
}

void ZELKLWCLogTableController::tableViewCancel(ZELKLWCLogTableView &)
{
    cancelFilter();
}

// MARK: highlight

QList<int> ZELKLWCLogTableController::highlightEntries() const
{
    return m_highlight.isValid() ? QList{m_highlight.row()} : QList<int>();
}

std::optional<QColor> ZELKLWCLogTableController::tableViewWillDisplayCell(Column column, int row) const
{
    if (!m_highlightRelated || column != Column::SummaryColumn || !m_highlight.isValid() ||
        m_highlight.row() != row || !m_highlightColour.isValid())
        return std::nullopt;
    return m_highlightColour;
}

void ZELKLWCLogTableController::tableViewSelectionDidChange()
{
    if (m_highlightRelated)
        m_queue.enqueue(didChange);
}

void ZELKLWCLogTableController::tableSelectionCoalescedDidChange()
{
    if (!m_highlightRelated)
        return;
    const QPersistentModelIndex before = m_highlight;
    const std::optional<int> row = rowOfOnlySelectedEntrysPair();
    m_highlight =
        row ? QPersistentModelIndex(m_model.index(*row, Column::SummaryColumn)) : QPersistentModelIndex();
    if (m_highlight != before)
        redisplay();
}

void ZELKLWCLogTableController::notificationPosted(const QString &name)
{
    if (name == didChange)
        tableSelectionCoalescedDidChange();
    if (name == selectByDate)
        coalescedSelectEntryByDate();
}

void ZELKLWCLogTableController::selectEntryByDate(QObject *sender)
{
    if (!sender || !sender->property("selection").isValid())
        return;
    m_dateSender = sender;
    m_queue.enqueue(selectByDate);
}
