#include "ZELKInspectorKind.h"

#include "ZELKLWCAbsoluteDuration.h"
#include "ZELKLWCLogEntry.h"

#include <algorithm>
#include <array>

namespace {

template <typename... Types>
bool isOneOf(const QVariant &value)
{
    return ((value.metaType() == QMetaType::fromType<Types>()) || ...);
}

bool hasStringOrNumber(const QVariant &value)
{
    return isOneOf<QString, bool, int, uint, qlonglong, qulonglong, double, float, ZELKLWCDuration,
                   ZELKLWCAbsoluteDuration>(value);
}

} // namespace

ZELKLWCLogEntry *ZELKInspectorValue::entry(const QVariant &value)
{
    return isOneOf<ZELKLWCLogEntry *>(value) ? value.value<ZELKLWCLogEntry *>() : nullptr;
}

ZELKInspectorValue::Selection ZELKInspectorValue::selection(const QVariant &value)
{
    return isOneOf<Selection>(value) ? value.value<Selection>() : nullptr;
}

QVariant ZELKInspectorValue::single(const QVariant &value)
{
    const Selection found = selection(value);
    return found && found->selectionCount() == 1 ? QVariant::fromValue(found->selection().constFirst())
                                                 : value;
}

ZELKInspectorKind ZELKInspectorValue::kindOf(const QVariant &value)
{
    if (entry(value))
        return ZELKInspectorKind::Entry;
    if (const Selection found = selection(value))
        return found->selectionCount() == 1 ? kindOf(single(value)) : ZELKInspectorKind::Selection;
    if (isOneOf<QVariantList, QStringList>(value))
        return ZELKInspectorKind::Array;
    if (isOneOf<ZELKDictionary>(value))
        return ZELKInspectorKind::Dictionary;
    return hasStringOrNumber(value) ? ZELKInspectorKind::Scalar : ZELKInspectorKind::Unsupported;
}

bool ZELKInspectorValue::isSame(const QVariant &a, const QVariant &b)
{
    const Selection one = selection(a);
    const Selection other = selection(b);
    if (one && other)
        return one->selection() == other->selection() && one->duration() == other->duration();
    return a == b;
}
