#include "ZELKUPowerHistory.h"

#include <cstdint>
#include <cstdlib>

/// Any bytes as UPower's four files of a battery, parted by NUL characters: what is told is dated within
/// bounds and in order, the same when told again, and at most one event a line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr ZELKDate first = ZELKDate::fromSecondsSince1970(631152000.0);
    constexpr ZELKDate last = ZELKDate::fromSecondsSince1970(7258118400.0);
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QList<QByteArray> files = bytes.split('\0');
    const ZELKUPowerHistory history{files.value(0), files.value(1), files.value(2), files.value(3)};
    const ZELKUPowerHistory::Told told = history.told(QStringLiteral("battery"));
    if (told.events.size() > std::size_t(bytes.count('\n')) + 4)
        std::abort();
    for (std::size_t i = 0; i < told.events.size(); ++i)
        if (told.events[i].date < first || told.events[i].date > last ||
            (i > 0 && told.events[i].date < told.events[i - 1].date))
            std::abort();
    if (history.told(QStringLiteral("battery")).events != told.events)
        std::abort();
    return 0;
}
