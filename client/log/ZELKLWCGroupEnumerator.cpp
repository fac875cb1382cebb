#include "ZELKLWCGroupEnumerator.h"

#include "ZELKLWCLogEntry.h"

ZELKLWCLogEntry *ZELKLWCGroupEnumerator::nextObject()
{
    if (m_current)
        m_current = m_future ? m_current->next() : m_current->previous();
    return m_current;
}
