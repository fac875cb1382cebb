#include "ZELKBoxBlur.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int passes = 3;
constexpr int tile = 16; // as many floats as fill a cache line

/// Rows become columns.
void transpose(const std::vector<float> &values, std::vector<float> &to, int width, int height)
{
    for (int top = 0; top < height; top += tile)
        for (int left = 0; left < width; left += tile)
            for (int x = left; x < std::min(left + tile, width); ++x)
                for (int y = top; y < std::min(top + tile, height); ++y)
                    to[std::size_t(x) * std::size_t(height) + std::size_t(y)] =
                        values[std::size_t(y) * std::size_t(width) + std::size_t(x)];
}

} // namespace

/// A mean over n values has a variance of (n * n - 1) / 12; three of them, one after the other, three times
/// that.
ZELKBoxBlur::ZELKBoxBlur(double deviation)
{
    const double width = std::sqrt(4.0 * deviation * deviation + 1.0);
    m_radius = int((width - 1.0) / 2.0);
    m_part = float((width - (2.0 * m_radius + 1.0)) / 2.0);
    m_weight = float(1.0 / width);
}

void ZELKBoxBlur::blur(std::vector<float> &values, int width, int height) const
{
    std::vector<float> other(values.size());
    const auto blurAndTurn = [&](int columns, int rows) {
        for (int pass = 0; pass < passes; ++pass) {
            blurColumns(values, other, columns, rows);
            values.swap(other);
        }
        transpose(values, other, columns, rows);
        values.swap(other);
    };
    blurAndTurn(width, height);
    blurAndTurn(height, width);
}

/// All columns at once, row by row, as the values lie in memory.
void ZELKBoxBlur::blurColumns(const std::vector<float> &values, std::vector<float> &to, int width,
                              int height) const
{
    const std::vector<float> nothing(std::size_t(width), 0.0F);
    const auto line = [&](int y) {
        return y >= 0 && y < height ? values.data() + std::size_t(y) * nothing.size() : nothing.data();
    };
    std::vector<float> sums = nothing;
    for (int y = 0; y < m_radius; ++y)
        for (int x = 0; x < width; ++x)
            sums[std::size_t(x)] += line(y)[x];
    for (int y = 0; y < height; ++y) {
        const float *add = line(y + m_radius);
        const float *above = line(y - m_radius - 1);
        const float *below = line(y + m_radius + 1);
        const float *drop = line(y - m_radius);
        float *result = to.data() + std::size_t(y) * nothing.size();
        float *sum = sums.data();
        for (int x = 0; x < width; ++x) {
            sum[x] += add[x];
            result[x] = m_weight * (sum[x] + m_part * (above[x] + below[x]));
            sum[x] -= drop[x];
        }
    }
}
