#include "ZELKLogFeed.h"

#include "ZELKConsole.h"
#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKLWCLog.h"
#include "ZELKValue.h"

namespace {

// Deliberate: the second after a boundary is never asked for again.
constexpr double secondsPastBoundary = 1.0;

} // namespace

ZELKLogFeed::ZELKLogFeed(ZELKLWCLog &log, std::uint64_t handedOfFinalDate)
    : m_log(log)
    , m_finalDate(log.finalDate())
    , m_handedOfFinalDate(handedOfFinalDate)
    , m_toLeaveOut(handedOfFinalDate)
{
    if (log.count() > 0)
        m_from = m_finalDate.addingTimeInterval(handedOfFinalDate > 0 ? 0.0 : secondsPastBoundary);
}

bool ZELKLogFeed::wasHandedBefore(const ZELKRawEventReader &reader, ZELKRawEventReader::Kind kind)
{
    const double date = kind == ZELKRawEventReader::Kind::Texts
                            ? QByteArray::fromStdString(std::string(reader.view().date)).toDouble()
                            : ZELKValue::doubleValue(reader.dictionary().value(ZELKEventKeyDate));
    if (ZELKDate(date) != m_finalDate)
        return false;
    --m_toLeaveOut;
    return true;
}

void ZELKLogFeed::hand(const ZELKRawEventReader &reader, ZELKRawEventReader::Kind kind)
{
    if (m_toLeaveOut > 0 && wasHandedBefore(reader, kind))
        return;
    if (m_count++ == 0)
        m_log.beginExternalEntries();
    if (kind == ZELKRawEventReader::Kind::Texts)
        m_log.addExternalEntry(reader.view());
    else
        m_log.addExternalEntry(reader.dictionary());
    if (m_log.finalDate() != m_finalDate) {
        m_finalDate = m_log.finalDate();
        m_handedOfFinalDate = 1;
    } else if (m_handedOfFinalDate > 0) {
        ++m_handedOfFinalDate;
    }
}

void ZELKLogFeed::end()
{
    if (m_count == 0)
        return;
    ZELKConsole::log(ZELKFormat("cache provided %u entries.", {m_count}));
    m_log.endExternalEntries();
}
