#pragma once

#include <vector>

/// Rows side by side, both ends included.
struct ZELKRowRange
{
    int first = 0;
    int last = -1;

    int count() const { return last - first + 1; }
    bool operator==(const ZELKRowRange &) const = default;
};

/// Rows as runs of neighbours: everything that is selected may be a million rows, but is a few runs.
using ZELKRowRanges = std::vector<ZELKRowRange>;
