#pragma once

#include <cstddef>
#include <vector>

/// Columns of a million rows with little room to spare.
namespace ZELKTightGrowth {

/// Makes room for `size` elements. Doubling would take as much again; a 64th more still means that an element
/// is copied some 64 times at most while the column grows one by one. Room for many more is given back.
template <typename Value>
void fit(std::vector<Value> &column, std::size_t size)
{
    constexpr std::size_t spare = 1024;
    if (size > column.capacity())
        column.reserve(column.empty() ? size : size + size / 64 + 16);
    else if (column.capacity() > 2 * size + spare && column.size() <= size)
        column.shrink_to_fit();
}

} // namespace ZELKTightGrowth
