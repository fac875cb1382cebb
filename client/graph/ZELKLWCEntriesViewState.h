#pragma once

#include <QRectF>
#include <QString>

class ZELKLWCLogEntry;

/// One block of the graph: a time in which a state held. A plain value.
struct ZELKLWCEntriesViewState
{
    /// In points of an unflipped view. The width is negative when the block ends left of its beginning.
    QRectF bounds;
    /// The state word; null for a block that no display list takes.
    QString state;
    /// What ends the block, or stands for it, and supplies its tool tip; the log's.
    const ZELKLWCLogEntry *entry = nullptr;

    static ZELKLWCEntriesViewState stateWithBounds(const QRectF &bounds, const QString &state,
                                                   const ZELKLWCLogEntry *entry)
    {
        return {bounds, state, entry};
    }
    friend bool operator==(const ZELKLWCEntriesViewState &, const ZELKLWCEntriesViewState &) = default;
};
