// The log's searches: what graph and statistics ask for.
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryPowerStatus.h"

#include <algorithm>

using Id = ZELKStringPool::Id;

namespace {

ZELKLWCLogEntryPowerStatus *readingOf(ZELKLWCLogEntry *entry, Id battery)
{
    if (entry->kind() != ZELKEntryKind::PowerStatus)
        return nullptr;
    const Id name = entry->arena().properties().textId(entry->packedProperties(), ZELKPackedProperties::Name);
    return name == battery ? static_cast<ZELKLWCLogEntryPowerStatus *>(entry) : nullptr;
}

} // namespace

std::uint64_t ZELKLWCLog::firstAfter(ZELKDate date) const
{
    const auto notAfter = [&](Handle entry) { return m_arena.at(entry)->date() <= date; };
    const auto found = m_ascending ? std::partition_point(m_entries.begin(), m_entries.end(), notAfter)
                                   : std::find_if_not(m_entries.begin(), m_entries.end(), notAfter);
    return std::uint64_t(found - m_entries.begin());
}

std::int64_t ZELKLWCLog::entryBeforeDate(ZELKDate date) const
{
    if (m_entries.empty() || !objectAtIndex(0)->before(date))
        return notFound;
    return std::int64_t(std::min<std::uint64_t>(firstAfter(date), m_entries.size() - 1));
}

ZELKLWCLogEntry *ZELKLWCLog::pairRepresentsChangesNextAfter(const QString &word, std::int64_t index) const
{
    const Id wanted = m_arena.texts().find(std::string_view(word.toUtf8()));
    for (auto i = std::uint64_t(index); index >= 0 && i < m_entries.size(); ++i) {
        ZELKLWCLogEntry *entry = m_arena.at(m_entries[i]);
        if (entry->pairRepresentsId() != ZELKStringPool::nil && entry->pairRepresentsId() != wanted)
            return entry;
    }
    return nullptr;
}

ZELKLWCLogEntry *ZELKLWCLog::nextPairRepresentsAfter(std::int64_t index) const
{
    return pairRepresentsChangesNextAfter(QString(), index);
}

ZELKLWCLogEntryPowerStatus *ZELKLWCLog::powerEventForBatteryBefore(const QString &name,
                                                                   const ZELKLWCLogEntry *entry) const
{
    const Id battery = m_arena.texts().find(std::string_view(name.toUtf8()));
    const std::optional<std::uint64_t> position = indexOfEntry(entry);
    if (!position || battery == ZELKStringPool::nil)
        return nullptr;
    for (std::uint64_t i = *position; i-- > 0;)
        if (ZELKLWCLogEntryPowerStatus *reading = readingOf(m_arena.at(m_entries[i]), battery))
            return reading;
    return nullptr;
}

ZELKLWCLogEntryPowerStatus *ZELKLWCLog::powerEventForBatteryAfter(const QString &name,
                                                                  const ZELKLWCLogEntry *entry) const
{
    const Id battery = m_arena.texts().find(std::string_view(name.toUtf8()));
    const std::optional<std::uint64_t> position = indexOfEntry(entry);
    if (!position || battery == ZELKStringPool::nil)
        return nullptr;
    for (std::uint64_t i = *position + 1; i < m_entries.size(); ++i)
        if (ZELKLWCLogEntryPowerStatus *reading = readingOf(m_arena.at(m_entries[i]), battery))
            return reading;
    return nullptr;
}

float ZELKLWCLog::interpolatePercentageChargedForDate(ZELKDate date, const ZELKLWCLogEntryPowerStatus &first,
                                                      const ZELKLWCLogEntryPowerStatus &second)
{
    const auto p1 = float(first.percentageCharged());
    const auto p2 = float(second.percentageCharged());
    const double duration = second.date().timeIntervalSinceDate(first.date());
    if (p1 == p2 || !(duration > 0.0))
        return p1;
    return float(double(p1) + date.timeIntervalSinceDate(first.date()) * double(p2 - p1) / duration);
}
