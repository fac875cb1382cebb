#include "ZELKLWCLogEntryEnumerator.h"

#include "ZELKLWCLogEntry.h"

ZELKLWCLogEntry *ZELKLWCLogEntryEnumerator::nextObject()
{
    if (m_current)
        m_current = m_current->past();
    return m_current;
}
