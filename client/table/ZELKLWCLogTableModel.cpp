#include "ZELKLWCLogTableModel.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCLog.h"
#include "ZELKShortDate.h"

#include <algorithm>

ZELKLWCLogTableModel::ZELKLWCLogTableModel(ZELKLWCLog &log, QObject *parent)
    : QAbstractTableModel(parent)
    , m_log(log)
    , m_range(log.visibleRange())
{
    connect(&log, &ZELKLWCLog::visibleEntriesDidChange, this,
            [this](ZELKVisibleRange, ZELKVisibleRange after) { zelkGuard([&] { follow(after); }); });
}

int ZELKLWCLogTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_range.length);
}

int ZELKLWCLogTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ZELKLWCLogTableModel::data(const QModelIndex &index, int role) const
{
    QVariant value;
    zelkGuard([&] {
        const ZELKLWCLogEntry *entry = index.isValid() ? entryAtRow(index.row()) : nullptr;
        if (entry && role == Qt::DisplayRole)
            value = index.column() == DateColumn ? ZELKShortDate::text(entry->date()) : entry->summary();
    });
    return value;
}

QVariant ZELKLWCLogTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return int(Qt::AlignLeading | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
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

ZELKLWCLogEntry *ZELKLWCLogTableModel::entryAtRow(int row) const
{
    if (row < 0 || row >= rowCount())
        return nullptr;
    return m_log.objectAtIndex(int(m_range.location) + row);
}

void ZELKLWCLogTableModel::follow(ZELKVisibleRange range)
{
    const bool overlaps = std::max(m_range.location, range.location) < std::min(m_range.end(), range.end());
    if (!overlaps) {
        removeEnds({m_range.location, 0});
        m_range.location = range.location;
    } else {
        const std::uint64_t first = std::max(m_range.location, range.location);
        removeEnds({first, std::min(m_range.end(), range.end()) - first});
    }
    insertEnds(range);
}

/// Leaves the rows of `range`, which lies within the rows there are.
void ZELKLWCLogTableModel::removeEnds(ZELKVisibleRange range)
{
    if (range.end() < m_range.end()) {
        beginRemoveRows({}, int(range.end() - m_range.location), rowCount() - 1);
        m_range.length = range.end() - m_range.location;
        endRemoveRows();
    }
    if (range.location > m_range.location) {
        beginRemoveRows({}, 0, int(range.location - m_range.location) - 1);
        m_range = range;
        endRemoveRows();
    }
}

/// Grows to `range`, which the rows there are lie within.
void ZELKLWCLogTableModel::insertEnds(ZELKVisibleRange range)
{
    if (range.location < m_range.location) {
        const std::uint64_t count = m_range.location - range.location;
        beginInsertRows({}, 0, int(count) - 1);
        m_range = {range.location, m_range.length + count};
        endInsertRows();
    }
    if (range.end() > m_range.end()) {
        beginInsertRows({}, rowCount(), int(range.end() - m_range.location) - 1);
        m_range = range;
        endInsertRows();
    }
}
