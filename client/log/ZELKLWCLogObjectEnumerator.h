#pragma once

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// Walks through the entries of a log in the order of their arrival, those that come during the walk
/// included.
class ZELKLWCLogObjectEnumerator
{
public:
    explicit ZELKLWCLogObjectEnumerator(const ZELKLWCLog &log)
        : m_log(&log)
    {
    }

    /// The next entry of the walk, null at its end.
    ZELKLWCLogEntry *nextObject();

private:
    const ZELKLWCLog *m_log;
    int m_next = 0;
};
