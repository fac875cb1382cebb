#include "ZELKStatisticsBasis.h"

#include "ZELKLWCLog.h"

#include <algorithm>

ZELKStatisticsBasis::ZELKStatisticsBasis(const ZELKLWCLog &log, ZELKDate latest)
    : m_log(&log)
    , m_end(latest.addingTimeInterval(reach))
    , m_count(log.count())
    , m_supportsBatteries(log.supportsBatteries())
{
    for (const ZELKLWCLogEntry *entry : log.finalGroupEntries())
        if (entry->kind() == ZELKEntryKind::PowerStatus && entry->date() <= m_end)
            m_readings.emplace_back(entry, entry->duplicates().size());
}

bool ZELKStatisticsBasis::holds() const
{
    if (m_log->supportsBatteries() != m_supportsBatteries)
        return false;
    for (int i = m_count; i < m_log->count(); ++i)
        if (m_log->objectAtIndex(i)->date() <= m_end)
            return false;
    return std::all_of(m_readings.begin(), m_readings.end(), [](const auto &reading) {
        return reading.first->duplicates().size() == reading.second;
    });
}
