#include "ZELKAccountingRecords.h"

#include <cstdint>
#include <cstdlib>

/// Any bytes as an accounting file: every record told of lies within the bounds of its time, and the bytes
/// add up.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr ZELKDate now(800000000.0);
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    const ZELKAccountingRecords found = ZELKAccountingRecords::read(bytes, now);
    if (found.consumed + found.strayBytes != size ||
        found.consumed % ZELKAccountingRecords::recordSize() != 0)
        std::abort();
    if (found.records.size() + found.unknownTypes + found.absurdTimes >
        size / ZELKAccountingRecords::recordSize())
        std::abort();
    for (const auto &record : found.records)
        if (record.date < ZELKDate::fromSecondsSince1970(631152000.0) ||
            record.date > now.addingTimeInterval(86400.0))
            std::abort();
    return 0;
}
