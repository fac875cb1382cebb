#include "ZELKSelectionWalk.h"

#include "ZELKSleepCostTracker.h"

#include <algorithm>

namespace {

const ZELKLWCLog *logOf(const ZELKLWCLogEntry &entry)
{
    const auto container = entry.container();
    const auto *log = std::get_if<ZELKLWCLog *>(&container);
    return log ? *log : nullptr;
}

} // namespace

ZELKSelectionWalk::ZELKSelectionWalk(const Entries &selection)
    : m_selection(selection)
    , m_log(logOf(*selection.constFirst()))
    , m_way(likelyWay())
    , m_first(selection.constFirst())
    , m_last(selection.constLast())
{
    if (m_way == Way::Downwards)
        std::swap(m_first, m_last);
    if (m_way == Way::Upwards || m_way == Way::Downwards)
        findReach(m_first, m_last);
    else if (m_way == Way::Marked)
        mark();
    else
        sort();
}

/// By their dates, and at one moment as they arrived.
bool ZELKSelectionWalk::isOlder(const ZELKLWCLogEntry *a, const ZELKLWCLogEntry *b)
{
    return a->date() < b->date() || (a->date() == b->date() && a->handle() < b->handle());
}

/// A look at a few of them tells enough: the walk finds out if it is not so.
ZELKSelectionWalk::Way ZELKSelectionWalk::likelyWay() const
{
    if (!m_log)
        return Way::Sorted;
    const qsizetype stride = std::max<qsizetype>(1, m_selection.size() / 64);
    bool rises = true;
    bool falls = true;
    for (qsizetype i = stride; i < m_selection.size(); i += stride) {
        const bool isAbove = m_selection.at(i)->handle() > m_selection.at(i - stride)->handle();
        rises = rises && isAbove;
        falls = falls && !isAbove;
    }
    return rises ? Way::Upwards : falls ? Way::Downwards : Way::Marked;
}

void ZELKSelectionWalk::takeNextWay()
{
    if (m_way == Way::Upwards || m_way == Way::Downwards)
        mark();
    else
        sort();
}

void ZELKSelectionWalk::mark()
{
    m_way = Way::Marked;
    m_first = m_last = m_selection.constFirst();
    const ZELKLWCLogEntry *low = m_first;
    const ZELKLWCLogEntry *high = m_first;
    for (ZELKLWCLogEntry *entry : m_selection) {
        if (logOf(*entry) != m_log)
            continue; // it is missed in the walk
        const std::size_t handle = entry->handle();
        if (handle >= m_marks.size())
            m_marks.resize(std::max(handle + 1, 2 * m_marks.size()));
        m_marks[handle] = true;
        low = handle < low->handle() ? entry : low;
        high = handle > high->handle() ? entry : high;
        m_first = isOlder(entry, m_first) ? entry : m_first;
        m_last = isOlder(m_last, entry) ? entry : m_last;
    }
    findReach(low, high);
}

/// Each selected entry as often as it was, and those around that are not selected.
void ZELKSelectionWalk::sort()
{
    m_way = Way::Sorted;
    for (int i = m_from; i < m_end; ++i)
        if (const ZELKLWCLogEntry *entry = m_log->objectAtIndex(i); !isMarked(*entry))
            addSteps(entry, Role::Other);
    for (ZELKLWCLogEntry *entry : m_selection) {
        m_first = isOlder(entry, m_first) ? entry : m_first;
        m_last = isOlder(m_last, entry) ? entry : m_last;
        addSteps(entry, Role::Selected);
    }
    std::sort(m_sorted.begin(), m_sorted.end(),
              [](const Step &a, const Step &b) { return isOlder(a.entry, b.entry); });
}

void ZELKSelectionWalk::addSteps(const ZELKLWCLogEntry *entry, Role role)
{
    m_sorted.push_back({entry, role});
    if (entry->kind() == ZELKEntryKind::PowerStatus)
        for (const ZELKLWCLogEntry *duplicate : entry->duplicates())
            m_sorted.push_back({duplicate, Role::Duplicate});
}

// MARK: reach

/// From the sleep's beginning that goes on at the first entry; else from the first itself.
ZELKDate ZELKSelectionWalk::beginning() const
{
    const ZELKLWCLogEntry *older = ZELKLWCLogEntry::pairAtTimeOfEntry(m_first->past());
    const bool isAsleep = older && older->pairRepresentsId() == ZELKEntryWords::Asleep;
    return isAsleep ? std::min(m_first->date(), older->date()) : m_first->date();
}

void ZELKSelectionWalk::findReach(const ZELKLWCLogEntry *low, const ZELKLWCLogEntry *high)
{
    const auto first = m_log->indexOfEntry(low);
    const auto last = m_log->indexOfEntry(high);
    if (!first || !last)
        return;
    constexpr double silence = ZELKSleepCostTracker::longestSilence;
    const ZELKDate from = beginning().addingTimeInterval(-silence);
    const ZELKDate to = m_last->date().addingTimeInterval(silence);
    m_from = int(*first);
    m_end = int(*last) + 1;
    while (m_from > 0 && m_log->objectAtIndex(m_from - 1)->date() >= from)
        --m_from;
    while (m_end < m_log->count() && m_log->objectAtIndex(m_end)->date() <= to)
        ++m_end;
}
