#pragma once

#include "ZELKLWCLogEntrySelection.h"

#include <QVariant>

#include <memory>

class ZELKLWCLogEntry;

/// What kind of sub-view shows a value. The first kind that is true of it counts.
enum class ZELKInspectorKind {
    Entry,      ///< a log entry
    Selection,  ///< a selection of entries, other than of one
    Array,      ///< has a count, and a value at each index
    Dictionary, ///< has values for keys
    Scalar,     ///< has a text or a number
    Unsupported
};

/// Values of the panel as they are put into variants.
namespace ZELKInspectorValue {

using Selection = std::shared_ptr<const ZELKLWCLogEntrySelection>;

ZELKInspectorKind kindOf(const QVariant &value);
/// The same value; of a selection of exactly one entry, that entry.
QVariant single(const QVariant &value);
/// The entry; null for another value.
ZELKLWCLogEntry *entry(const QVariant &value);
/// The selection; null for another value.
Selection selection(const QVariant &value);
/// Whether both would be shown alike.
bool isSame(const QVariant &a, const QVariant &b);

} // namespace ZELKInspectorValue
