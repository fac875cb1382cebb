#pragma once

#include "ZELKPropertyList.h"
#include "ZELKRawEvent.h"

/// Writes the serialised form of raw events, a binary property list. A flat dictionary of texts is written
/// straight away, byte for byte as the property-list library does (the cache knows a duplicate by its bytes);
/// anything else goes through the library.
namespace ZELKRawEventWriter {

/// Empty bytes and an error when it cannot be serialised.
ZELKPropertyList::Written write(const ZELKRawEvent &event);

} // namespace ZELKRawEventWriter
