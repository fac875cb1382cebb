#include "ZELKLWCLogObjectEnumerator.h"

#include "ZELKLWCLog.h"

ZELKLWCLogEntry *ZELKLWCLogObjectEnumerator::nextObject()
{
    return m_next < m_log->count() ? m_log->objectAtIndex(m_next++) : nullptr;
}
