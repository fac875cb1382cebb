#include "ZELKPropertyList.h"
#include "ZELKValue.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

} // namespace

/// Any bytes are read or refused; what was read can be written in both forms, and comes back from the binary
/// one unchanged. (XML dates have no fractions; and a real that is no number equals nothing, so texts are
/// compared.)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto first = ZELKPropertyList::read({reinterpret_cast<const char *>(data), size});
    require(first.value.isValid() == first.error.isEmpty());
    if (!first.value.isValid())
        return 0;

    const auto binary = ZELKPropertyList::writeBinary(first.value);
    require(binary.error.isEmpty());
    const auto second = ZELKPropertyList::read(view(binary.bytes));
    require(ZELKValue::description(first.value) == ZELKValue::description(second.value));

    const auto xml = ZELKPropertyList::writeXml(first.value);
    require(xml.error.isEmpty());
    require(ZELKPropertyList::read(view(xml.bytes)).error.isEmpty());
    return 0;
}
