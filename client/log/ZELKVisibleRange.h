#pragma once

#include <cstdint>

/// A run of the log's entries, by index.
struct ZELKVisibleRange
{
    std::uint64_t location = 0;
    std::uint64_t length = 0;

    std::uint64_t end() const { return location + length; }
    /// Location inclusive, location plus length exclusive.
    bool contains(std::uint64_t index) const { return index >= location && index < end(); }

    friend bool operator==(const ZELKVisibleRange &, const ZELKVisibleRange &) = default;
};
