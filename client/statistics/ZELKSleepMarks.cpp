#include "ZELKSleepMarks.h"

#include "ZELKEntryWords.h"

void ZELKSleepMarks::addState(ZELKStringPool::Id state, ZELKDate date)
{
    Mark mark = m_last;
    const bool begins = state == ZELKEntryWords::Asleep;
    const bool isUsual = mark.isAsleep ? state == ZELKEntryWords::Awake : begins;
    mark.breaks += isUsual ? 0 : 1;
    if (mark.isAsleep && !begins)
        endSleep(mark, date);
    else if (begins && !mark.isAsleep)
        m_fellAsleep = date;
    mark.isAsleep = begins;
    add(mark, date);
}

void ZELKSleepMarks::endSleep(Mark &mark, ZELKDate date)
{
    m_sleeps.push_back({m_fellAsleep, date});
    ++mark.sleeps;
    mark.secondsAsleep += date.timeIntervalSinceDate(m_fellAsleep);
}

void ZELKSleepMarks::addBreak(ZELKDate date)
{
    Mark mark = m_last;
    ++mark.breaks;
    add(mark, date);
}

void ZELKSleepMarks::add(Mark mark, ZELKDate date)
{
    const bool isLaterMoment = m_last.date < date;
    if (isLaterMoment)
        m_atItsMoment = m_last;
    const bool isNextOfMoment = m_atItsMoment.number == m_last.number;
    mark.date = date;
    ++mark.number;
    m_last = mark;
    if (isNextOfMoment && !mark.isAsleep)
        m_atItsMoment = mark;
}
