#include "ZELKLWCLogTableModel.h"

#include "ZELKAssertion.h"
#include "ZELKEntryKeyPath.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryFormatter.h"
#include "ZELKShortDate.h"

namespace {

/// Some 5 ms of composing.
constexpr std::size_t summariesAtATime = 5000;

} // namespace

ZELKLWCLogTableModel::ZELKLWCLogTableModel(ZELKLWCLog &log, QObject *parent)
    : QAbstractTableModel(parent)
    , m_log(log)
    , m_arrangement(log)
{
    m_arrangement.arrange(log.visibleRange(), {}, {});
    connect(&log, &ZELKLWCLog::visibleEntriesDidChange, this,
            [this](ZELKVisibleRange, ZELKVisibleRange after) { zelkGuard([&] { follow(after); }); });
    connect(&m_idle, &QTimer::timeout, this, [this] {
        zelkGuard([this] {
            if (!m_arrangement.prepareSome(summariesAtATime))
                m_idle.stop();
        });
    });
    prepareWhenIdle();
}

void ZELKLWCLogTableModel::setFormatters(const ZELKFormatter *date, const ZELKLWCLogEntryFormatter *summary)
{
    m_dateFormatter = date;
    m_summaryFormatter = summary;
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

// MARK: cells

QString ZELKLWCLogTableModel::identifier(Column column)
{
    return column == DateColumn ? QStringLiteral("date") : QStringLiteral("events");
}

QVariant ZELKLWCLogTableModel::value(ZELKLWCLogEntry *entry, Column column)
{
    return ZELKEntryKeyPath::value(*entry, identifier(column));
}

const ZELKFormatter *ZELKLWCLogTableModel::formatter(Column column) const
{
    return column == DateColumn ? m_dateFormatter : m_summaryFormatter;
}

int ZELKLWCLogTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_arrangement.count();
}

int ZELKLWCLogTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString ZELKLWCLogTableModel::text(ZELKLWCLogEntry *entry, Column column) const
{
    if (const ZELKFormatter *known = formatter(column))
        return known->stringForObjectValue(value(entry, column));
    return column == DateColumn ? ZELKShortDate::text(entry->date()) : entry->summary();
}

ZELKAttributedString ZELKLWCLogTableModel::attributedText(ZELKLWCLogEntry *entry, Column column) const
{
    if (column == SummaryColumn && m_summaryFormatter)
        return m_summaryFormatter->attributedStringForRow(*entry);
    if (const ZELKFormatter *known = formatter(column))
        return known->attributedStringForObjectValue(value(entry, column));
    return ZELKAttributedString(text(entry, column));
}

QVariant ZELKLWCLogTableModel::data(const QModelIndex &index, int role) const
{
    QVariant value;
    zelkGuard([&] {
        ZELKLWCLogEntry *entry = index.isValid() ? entryAtRow(index.row()) : nullptr;
        if (!entry)
            return;
        if (role == Qt::DisplayRole)
            value = text(entry, Column(index.column()));
        else if (role == attributedTextRole)
            value = QVariant::fromValue(attributedText(entry, Column(index.column())));
        // Whichever cell is current, a screen reader says the row.
        else if (role == Qt::AccessibleTextRole)
            value = QString(text(entry, DateColumn) + QLatin1String(", ") + entry->summary());
    });
    return value;
}

QVariant ZELKLWCLogTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignLeading | Qt::AlignVCenter);
    // Dates rise from the start, so that the first click on them has them fall.
    if (role == Qt::InitialSortOrderRole)
        return section == DateColumn ? Qt::DescendingOrder : Qt::AscendingOrder;
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
        return {};
    QVariant title;
    zelkGuard([&] {
        const QString key = section == DateColumn ? QStringLiteral("ZELKLWCLogTableModel.date")
                                                  : QStringLiteral("ZELKLWCLogTableModel.summary");
        title = ZELKEnvironment::current().mainBundle->localizedStringForKey(
            key, {}, QStringLiteral("ZELKLWCLogTableModel"));
    });
    return title;
}

Qt::ItemFlags ZELKLWCLogTableModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags row = QAbstractTableModel::flags(index);
    return index.isValid() ? row | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren : row;
}

ZELKLWCLogEntry *ZELKLWCLogTableModel::entryAtRow(int row) const
{
    if (row < 0 || row >= rowCount())
        return nullptr;
    return m_log.objectAtIndex(int(m_arrangement.indexAtRow(row)));
}

std::optional<int> ZELKLWCLogTableModel::rowOfEntry(const ZELKLWCLogEntry *entry) const
{
    const std::optional<std::uint64_t> index = m_log.indexOfEntry(entry);
    if (!index)
        return std::nullopt;
    return m_arrangement.rowOfIndex(ZELKEntryArrangement::Index(*index));
}

ZELKDateNeighbours ZELKLWCLogTableModel::neighboursOfDate(ZELKDate date) const
{
    using Order = ZELKDateNeighbours::Order;
    const Order byDate = m_arrangement.isFalling() ? Order::Falling : Order::Rising;
    return {date, rowCount(), m_arrangement.isByDate() ? byDate : Order::None,
            [this](int row) { return entryAtRow(row)->date(); }};
}

// MARK: arranging

void ZELKLWCLogTableModel::setFilterString(const QString &filterString)
{
    if (filterString == m_filterString)
        return;
    m_filterString = filterString;
    rearrange();
}

void ZELKLWCLogTableModel::setSortDescriptors(const ZELKSortDescriptors &descriptors)
{
    if (descriptors == m_sortDescriptors)
        return;
    m_sortDescriptors = descriptors;
    rearrange();
}

void ZELKLWCLogTableModel::rearrange()
{
    Q_EMIT willRearrange();
    beginResetModel();
    m_arrangement.arrange(m_log.visibleRange(), m_filterString, m_sortDescriptors);
    endResetModel();
    Q_EMIT didRearrange();
    prepareWhenIdle();
}

void ZELKLWCLogTableModel::follow(ZELKVisibleRange range)
{
    if (range == m_arrangement.range())
        return;
    const auto leaving = m_arrangement.leaving(range);
    if (!leaving)
        return rearrange();
    for (const ZELKEntryArrangement::Span &span : *leaving)
        takeOut(span);
    if (const auto insertions = m_arrangement.entering(range)) {
        for (const ZELKEntryArrangement::Insertion &insertion : *insertions)
            putIn(insertion);
        prepareWhenIdle();
    } else {
        rearrange();
    }
}

void ZELKLWCLogTableModel::takeOut(ZELKEntryArrangement::Span span)
{
    const int first = m_arrangement.rowOfSpan(span);
    beginRemoveRows({}, first, first + int(span.length) - 1);
    m_arrangement.remove(span);
    endRemoveRows();
}

void ZELKLWCLogTableModel::putIn(const ZELKEntryArrangement::Insertion &insertion)
{
    const int first = m_arrangement.rowOfSpan({insertion.position, 0});
    beginInsertRows({}, first, first + int(insertion.entries.size()) - 1);
    m_arrangement.insert(insertion);
    endInsertRows();
}

void ZELKLWCLogTableModel::prepareWhenIdle()
{
    if (!m_arrangement.isPrepared() && !m_idle.isActive())
        m_idle.start(0);
}
