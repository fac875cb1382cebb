#pragma once

#include "ZELKLogSource.h"

/// A line an entry, as it describes itself: date, summary, attributes, divided by tabs; as UTF-8. Nothing is
/// escaped.
class ZELKTabTextSource : public ZELKLogSource
{
public:
    using ZELKLogSource::ZELKLogSource;

protected:
    bool writeEntries(QIODevice &device, int first, int end) override;
};
