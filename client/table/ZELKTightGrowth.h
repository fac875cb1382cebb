#pragma once

#include <cstddef>
#include <vector>

/// Makes room for `size` elements with little to spare: doubling would take as much again for a column of a
/// million rows. A 64th more still means that an element is copied some 64 times at most while the column
/// grows one by one. Room for many more than that is given back.
template <typename Value>
void zelkFitTightly(std::vector<Value> &column, std::size_t size)
{
    constexpr std::size_t spare = 1024;
    if (size > column.capacity())
        column.reserve(column.empty() ? size : size + size / 64 + 16);
    else if (column.capacity() > 2 * size + spare && column.size() <= size)
        column.shrink_to_fit();
}
