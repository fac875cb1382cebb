#pragma once

class ZELKLWCLogEntry;

/// Walks through a group: back in time when `future` is set, forward when it is not. The starting entry
/// itself is not given.
class ZELKLWCGroupEnumerator
{
public:
    ZELKLWCGroupEnumerator(ZELKLWCLogEntry *entry, bool future)
        : m_current(entry)
        , m_future(future)
    {
    }
    static ZELKLWCGroupEnumerator enumeratorWithEntry(ZELKLWCLogEntry *entry, bool future)
    {
        return {entry, future};
    }

    /// The next entry of the walk, null at its end.
    ZELKLWCLogEntry *nextObject();
    ZELKLWCLogEntry *current() const { return m_current; }
    bool future() const { return m_future; }

private:
    ZELKLWCLogEntry *m_current;
    bool m_future;
};
