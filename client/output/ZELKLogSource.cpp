#include "ZELKLogSource.h"

#include "ZELKLWCLog.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int entriesOfPiece = 256;

} // namespace

ZELKLogSource::ZELKLogSource(const ZELKLWCLog &log)
    : m_log(log)
    , m_count(log.count())
{
}

ZELKExportSource::Outcome ZELKLogSource::writeSome(QIODevice &device)
{
    if (!std::exchange(m_hasBegun, true) && !begin(device))
        return Outcome::Failed;
    const int last = std::min(m_next + entriesOfPiece, m_count);
    if (m_next < last && !writeEntries(device, m_next, last))
        return Outcome::Failed;
    m_next = last;
    if (m_next < m_count)
        return Outcome::More;
    return end(device) ? Outcome::Whole : Outcome::Failed;
}

double ZELKLogSource::fraction() const
{
    return m_count == 0 ? 1.0 : double(m_next) / double(m_count);
}

bool ZELKLogSource::begin(QIODevice &)
{
    return true;
}

bool ZELKLogSource::end(QIODevice &)
{
    return true;
}

const ZELKLWCLogEntry &ZELKLogSource::entry(int index) const
{
    return *m_log.objectAtIndex(index);
}
