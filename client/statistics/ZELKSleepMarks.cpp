#include "ZELKSleepMarks.h"

#include "ZELKEntryWords.h"

#include <algorithm>

void ZELKSleepMarks::addState(ZELKStringPool::Id state, ZELKDate date)
{
    Mark mark = m_marks.back();
    mark.date = date;
    const bool begins = state == ZELKEntryWords::Asleep;
    const bool isUsual = mark.isAsleep ? state == ZELKEntryWords::Awake : begins;
    if (!isUsual)
        mark.breaks = (mark.breaks + 1) & 0x7FFFFFFFU;
    if (mark.isAsleep && !begins)
        endSleep(mark);
    else if (begins && !mark.isAsleep)
        m_fellAsleep = date;
    mark.isAsleep = begins ? 1 : 0;
    m_marks.push_back(mark);
}

void ZELKSleepMarks::endSleep(Mark &mark)
{
    m_sleeps.push_back({m_fellAsleep, mark.date});
    ++mark.sleeps;
    mark.secondsAsleep += mark.date.timeIntervalSinceDate(m_fellAsleep);
}

void ZELKSleepMarks::addBreak(ZELKDate date)
{
    Mark mark = m_marks.back();
    mark.date = date;
    mark.breaks = (mark.breaks + 1) & 0x7FFFFFFFU;
    m_marks.push_back(mark);
}

std::size_t ZELKSleepMarks::lastMarkFor(ZELKDate reading, std::size_t from) const
{
    if (m_marks.back().date < reading)
        return m_marks.size() - 1;
    const auto isBefore = [&](const Mark &mark) { return mark.date < reading; };
    const auto begin = m_marks.begin() + std::ptrdiff_t(from) + 1;
    auto next = std::partition_point(begin, m_marks.end(), isBefore);
    while (next != m_marks.end() && next->date == reading && !next->isAsleep)
        ++next;
    return std::size_t(next - m_marks.begin()) - 1;
}
