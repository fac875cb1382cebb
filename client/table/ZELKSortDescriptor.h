#pragma once

#include <QList>
#include <QString>

/// One step of a sort: the key of an entry's value, and the direction.
struct ZELKSortDescriptor
{
    QString key;
    bool ascending = true;

    bool operator==(const ZELKSortDescriptor &) const = default;
};

/// The first decides; each further one decides between those that are equal so far. Entries that are equal in
/// all keep the log's order. Unknown keys decide nothing.
using ZELKSortDescriptors = QList<ZELKSortDescriptor>;
