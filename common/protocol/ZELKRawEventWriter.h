#pragma once

#include "ZELKPropertyList.h"
#include "ZELKRawEvent.h"

/// The serialised form of a raw event, a binary property list. A flat dictionary of texts is written straight
/// away, byte for byte as the property-list library does (the cache knows a duplicate by its bytes); anything
/// else goes through the library. Empty bytes and an error when it cannot be serialised.
ZELKPropertyList::Written ZELKSerialisedRawEvent(const ZELKRawEvent &event);
