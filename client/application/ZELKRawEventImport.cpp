#include "ZELKRawEventImport.h"

#include "ZELKAssertion.h"
#include "ZELKCommandLineText.h"
#include "ZELKLWCStore.h"
#include "ZELKLineSource.h"

#include <utility>

namespace {

// As many as the store takes in one transaction, unless they are large.
constexpr qsizetype mostEvents = 10000;
constexpr std::size_t mostBytes = std::size_t(64) << 20;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

ZELKRawEventImport::ZELKRawEventImport(ZELKLWCStore &store, Complaint complain)
    : m_store(store)
    , m_complain(std::move(complain))
{
}

bool ZELKRawEventImport::run(ZELKLineSource &lines)
{
    while (const auto line = lines.next()) {
        if (line->isTooLong)
            skip(line->number, ZELKCommandLineText("longer than 16 MiB"));
        else
            take(line->text, line->number);
        if ((m_events.size() >= mostEvents || m_bytes >= mostBytes) && !write())
            return false;
    }
    return write();
}

void ZELKRawEventImport::take(std::string_view line, std::uint64_t number)
{
    if (number == 1 && line.starts_with(byteOrderMark))
        line.remove_prefix(byteOrderMark.size());
    if (line.find_first_not_of(" \t\r") == std::string_view::npos)
        return;
    ZELKRawEventLineReader::Result result = m_reader.read(line);
    if (!result.event)
        return skip(number, result.reason);
    m_events.append(std::move(*result.event));
    m_bytes += line.size();
}

void ZELKRawEventImport::skip(std::uint64_t number, const QString &reason)
{
    ++m_skipped;
    m_complain(number, reason);
}

bool ZELKRawEventImport::write()
{
    const QList<ZELKRawEvent> events = std::exchange(m_events, {});
    m_bytes = 0;
    if (events.isEmpty())
        return true;
    std::uint64_t before = 0;
    if (!zelkGuard([&] { before = m_store.changeCount(); }) || !m_store.cacheEvents(events))
        return false;
    const std::uint64_t after = m_store.changeCount();
    m_added += after > before ? after - before : 0; // a connection begun anew counts from 0
    m_imported += std::uint64_t(events.size());
    return true;
}
