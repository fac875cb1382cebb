#pragma once

class ZELKLWCLogEntry;

/// Walks back through all entries. The starting entry itself is not given.
class ZELKLWCLogEntryEnumerator
{
public:
    explicit ZELKLWCLogEntryEnumerator(ZELKLWCLogEntry *entry)
        : m_current(entry)
    {
    }
    static ZELKLWCLogEntryEnumerator enumeratorWithEntry(ZELKLWCLogEntry *entry)
    {
        return ZELKLWCLogEntryEnumerator(entry);
    }

    /// The next entry of the walk, null at its end.
    ZELKLWCLogEntry *nextObject();
    ZELKLWCLogEntry *current() const { return m_current; }

private:
    ZELKLWCLogEntry *m_current;
};
