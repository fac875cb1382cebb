#pragma once

#include "ZELKSortDescriptor.h"

#include <QByteArray>
#include <QColor>

#include <optional>

/// Values of the user's settings that are no property-list values, as bytes and back. Bytes that are damaged,
/// of another version or of another kind of value are nothing.
namespace ZELKArchive {

QByteArray archivedColour(const QColor &colour);
std::optional<QColor> unarchivedColour(const QByteArray &bytes);

QByteArray archivedSortDescriptors(const ZELKSortDescriptors &descriptors);
std::optional<ZELKSortDescriptors> unarchivedSortDescriptors(const QByteArray &bytes);

} // namespace ZELKArchive
