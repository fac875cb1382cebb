#pragma once

#include "ZELKLWCLog.h"

#include <QList>

#include <limits>
#include <vector>

/// A walk in the order of time over selected entries and what their log knows beyond them that bears on their
/// sleeps: those left out between them, the sleep that they begin in, and an hour before and behind.
///
/// Entries of no log have no surroundings. Entries that arrived late are put in their places, where they
/// arrived before the hour behind was over.
class ZELKSelectionWalk
{
public:
    using Entries = QList<ZELKLWCLogEntry *>;
    using Handle = ZELKEntryArena::Handle;

    /// `selection` has at least one entry, in any order, and outlives this object.
    explicit ZELKSelectionWalk(const Entries &selection);

    /// Makes a visitor, of the oldest and the latest of the selected entries and whether they are walked in
    /// the order of arrival, and has it add() each entry, and each duplicate of one in its own place. Where
    /// the walk turns out to need another order it begins anew, with another visitor.
    template <typename Make>
    auto play(Make &&make)
    {
        for (;;) {
            auto visitor = make(*m_first, *m_last, m_way != Way::Sorted);
            if (walk(visitor))
                return visitor;
            takeNextWay();
        }
    }

private:
    /// How selected entries are known: log and selection run side by side, upwards or downwards; by a mark
    /// for each; or all are sorted first, which always works.
    enum class Way { Upwards, Downwards, Marked, Sorted };
    enum class Role : std::uint8_t { Selected, Other, Duplicate };
    struct Step
    {
        const ZELKLWCLogEntry *entry;
        Role role;
    };

    static bool isOlder(const ZELKLWCLogEntry *a, const ZELKLWCLogEntry *b);
    Way likelyWay() const;
    void takeNextWay();
    void mark();
    bool isMarked(const ZELKLWCLogEntry &entry) const
    {
        const std::size_t handle = entry.handle();
        return handle < m_marks.size() && m_marks[handle];
    }
    void findReach(const ZELKLWCLogEntry *low, const ZELKLWCLogEntry *high);
    ZELKDate beginning() const;
    void sort();
    void addSteps(const ZELKLWCLogEntry *entry, Role role);

    template <typename Visitor>
    bool walk(Visitor &visitor) const;
    template <typename Next, typename Visitor>
    bool walkBeside(Next next, Next end, Visitor &visitor) const;
    template <typename Visitor>
    bool walkMarked(Visitor &visitor) const;
    /// False where the log is not in the order of time.
    template <typename IsSelected, typename Visitor>
    bool walkLog(IsSelected &&isSelected, Visitor &visitor) const;

    const Entries &m_selection;
    const ZELKLWCLog *m_log = nullptr;
    Way m_way = Way::Sorted;
    ZELKLWCLogEntry *m_first = nullptr;
    ZELKLWCLogEntry *m_last = nullptr;
    int m_from = 0; ///< the reach in the log
    int m_end = 0;
    std::vector<bool> m_marks; ///< by the entries' handles
    std::vector<Step> m_sorted;
};

template <typename Visitor>
bool ZELKSelectionWalk::walk(Visitor &visitor) const
{
    switch (m_way) {
    case Way::Upwards:
        return walkBeside(m_selection.cbegin(), m_selection.cend(), visitor);
    case Way::Downwards:
        return walkBeside(m_selection.crbegin(), m_selection.crend(), visitor);
    case Way::Marked:
        return walkMarked(visitor);
    case Way::Sorted:
        break;
    }
    for (const auto [entry, role] : m_sorted)
        role == Role::Duplicate ? visitor.addDuplicate(*entry) : visitor.add(*entry, role == Role::Selected);
    visitor.finish(std::numeric_limits<Handle>::max(), ZELKDate::distantFuture());
    return true;
}

template <typename Next, typename Visitor>
bool ZELKSelectionWalk::walkBeside(Next next, Next end, Visitor &visitor) const
{
    const auto isSelected = [&](const ZELKLWCLogEntry &entry) {
        if (next == end || *next != &entry)
            return false;
        ++next;
        return true;
    };
    return walkLog(isSelected, visitor) && next == end;
}

template <typename Visitor>
bool ZELKSelectionWalk::walkMarked(Visitor &visitor) const
{
    qsizetype met = 0;
    const auto isSelected = [&](const ZELKLWCLogEntry &entry) {
        const bool isMet = isMarked(entry);
        met += isMet ? 1 : 0;
        return isMet;
    };
    return walkLog(isSelected, visitor) && met == m_selection.size();
}

/// What stands between two entries of the log in their arena are duplicates, as they arrived.
template <typename IsSelected, typename Visitor>
bool ZELKSelectionWalk::walkLog(IsSelected &&isSelected, Visitor &visitor) const
{
    ZELKDate date = ZELKDate::distantPast();
    Handle next = 0;
    for (int i = m_from; i < m_end; ++i) {
        const ZELKLWCLogEntry &entry = *m_log->objectAtIndex(i);
        for (next = next == 0 ? entry.handle() : next; next < entry.handle(); ++next) {
            const ZELKLWCLogEntry &duplicate = *entry.arena().at(next);
            if (duplicate.date() < date)
                return false;
            date = duplicate.date();
            visitor.addDuplicate(duplicate);
        }
        if (entry.date() < date)
            return false;
        date = entry.date();
        visitor.add(entry, isSelected(entry));
        ++next;
    }
    visitor.finish(next - 1, date);
    return true;
}
