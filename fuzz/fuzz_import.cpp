#include "ZELKEventVocabulary.h"
#include "ZELKLWCLog.h"
#include "ZELKRawEventLineReader.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

/// Any line is an event or has a reason why not. An event is whole, can be kept, and the log takes it in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    ZELKRawEventLineReader reader;
    const auto result = reader.read({reinterpret_cast<const char *>(data), size});
    require(result.event.has_value() == result.reason.isEmpty());
    if (!result.event)
        return 0;
    require(result.event->size() == 4);
    require(ZELKIsDateText(std::string_view(result.event->string(ZELKEventKeyDate).toUtf8())));
    ZELKLWCLog log;
    log.addExternalEntries({*result.event});
    require(log.count() == 1);
    require(!log.objectAtIndex(0)->stringValue().isEmpty());
    return 0;
}
