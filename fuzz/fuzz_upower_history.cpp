#include "ZELKUPowerHistory.h"

#include <cstdint>
#include <cstdlib>

/// Any bytes as UPower's four files of a battery, parted by NUL characters: readings are within their
/// bounds and in order, the same when read again, and at most one a line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr qint64 first = 631152000;
    constexpr qint64 last = 7258118400;
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QList<QByteArray> files = bytes.split('\0');
    const ZELKUPowerHistory history{files.value(0), files.value(1), files.value(2), files.value(3)};
    std::size_t garbage = 0;
    const std::vector<ZELKUPowerReading> readings = history.readings(garbage);
    if (readings.size() + garbage > std::size_t(bytes.count('\n')) + 4)
        std::abort();
    for (std::size_t i = 0; i < readings.size(); ++i)
        if (readings[i].seconds < first || readings[i].seconds > last || readings[i].percent < 0 ||
            readings[i].percent > 100 || (i > 0 && readings[i].seconds < readings[i - 1].seconds))
            std::abort();
    if (history.readings(garbage) != readings)
        std::abort();
    return 0;
}
