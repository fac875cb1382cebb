#include "ZELKAccountingRecords.h"

#include "ZELKFormat.h"

#include <QDateTime>

#include <cstdint>
#include <cstring>
#include <optional>
#include <utmpx.h>

namespace {

constexpr ZELKDate earliest = ZELKDate::fromSecondsSince1970(631152000.0); // 1990-01-01 UTC
constexpr double secondsOfADay = 86400.0;

template <std::size_t N>
std::string_view field(const char (&text)[N])
{
    return {text, strnlen(text, N)};
}

ZELKDate dateOf(const utmpx &record)
{
    // A 32-bit field of seconds counts on beyond 2038 without a sign.
    using Seconds = decltype(record.ut_tv.tv_sec);
    const double seconds = sizeof(Seconds) == sizeof(std::uint32_t)
                               ? double(std::uint32_t(record.ut_tv.tv_sec))
                               : double(record.ut_tv.tv_sec);
    return ZELKDate::fromSecondsSince1970(seconds + double(record.ut_tv.tv_usec) / 1e6);
}

bool isKnown(const utmpx &record)
{
    constexpr short lastType = 9; // accounting, which <utmpx.h> names only with extensions
    if (record.ut_type < EMPTY || record.ut_type > lastType)
        return false;
    // The system's own records stand on the line "~"; bytes of another layout seldom do.
    const bool systemRecord = record.ut_type == BOOT_TIME || record.ut_type == RUN_LVL;
    return !systemRecord ||
           (field(record.ut_line) == "~" && record.ut_tv.tv_usec >= 0 && record.ut_tv.tv_usec < 1000000);
}

std::optional<ZELKAccountingRecords::Kind> kindOf(const utmpx &record)
{
    if (record.ut_type == BOOT_TIME)
        return ZELKAccountingRecords::Kind::Boot;
    if (record.ut_type == RUN_LVL && field(record.ut_user) == "shutdown")
        return ZELKAccountingRecords::Kind::ShutDown;
    return std::nullopt;
}

} // namespace

ZELKLWAEvent ZELKAccountingRecords::Record::event() const
{
    return {date, kind == Kind::Boot ? ZELKEventAccountingBoot : ZELKEventAccountingShutDown,
            ZELKMonitorSystemAccounting, ZELKEventNoProperties};
}

std::size_t ZELKAccountingRecords::recordSize()
{
    return sizeof(utmpx);
}

ZELKAccountingRecords ZELKAccountingRecords::read(std::string_view bytes, ZELKDate now)
{
    ZELKAccountingRecords result;
    for (; bytes.size() - result.consumed >= sizeof(utmpx); result.consumed += sizeof(utmpx)) {
        utmpx record;
        std::memcpy(&record, bytes.data() + result.consumed, sizeof record);
        if (!isKnown(record)) {
            ++result.unknownTypes;
            continue;
        }
        const auto kind = kindOf(record);
        if (!kind)
            continue;
        const ZELKDate date = dateOf(record);
        if (date < earliest || date > now.addingTimeInterval(secondsOfADay))
            ++result.absurdTimes;
        else
            result.records.push_back({*kind, date});
    }
    result.strayBytes = bytes.size() - result.consumed;
    return result;
}

QString ZELKAccountingRecords::skippedText() const
{
    return ZELKFormat("%lu of unknown type, %lu with an absurd time, %lu stray bytes",
                      {unknownTypes, absurdTimes, strayBytes});
}
