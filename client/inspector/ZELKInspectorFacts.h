#pragma once

#include "ZELKAttributedString.h"
#include "ZELKDate.h"
#include "ZELKDictionary.h"

class ZELKLWCLogEntry;
class ZELKLWCLogEntrySelection;

/// What the inspector says of an entry, and of a selection of entries, besides their attributes: a headline
/// and, by what they are called, some facts. In the zone, the locale and the words of the current
/// environment.
namespace ZELKInspectorFacts {

ZELKAttributedString titleOf(const ZELKLWCLogEntry &entry);
ZELKAttributedString titleOf(const ZELKLWCLogEntrySelection &selection);
ZELKDictionary ofEntry(const ZELKLWCLogEntry &entry);
/// The period, where it has one.
ZELKDictionary ofSelection(const ZELKLWCLogEntrySelection &selection);

/// The day with its name.
QString day(ZELKDate date);
/// To the second.
QString time(ZELKDate date);

} // namespace ZELKInspectorFacts
