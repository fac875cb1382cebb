#pragma once

#include <QByteArray>

#include <cstdint>

class QString;
class QVariant;
class ZELKLWCLog;
class ZELKLWCLogEntry;

/// Entries as JSON, appended to a text. Written by hand, as keys keep the order in which the entry has them.
namespace ZELKEntryJson {

/// One object: index, date, finalDate (seconds since the reference date, exact), event, monitor, group,
/// summary, pair (its index or null), pairRepresents (a state word or null), duplicates (dates), attributes.
void appendEntry(QByteArray &out, const ZELKLWCLog &log, const ZELKLWCLogEntry &entry, std::uint64_t index);
/// A property-list value: dictionaries as objects in their order, dates as seconds; a length of time, and
/// what else JSON has no form for, as its text.
void appendValue(QByteArray &out, const QVariant &value);
void appendString(QByteArray &out, const QString &text);

} // namespace ZELKEntryJson
