#include "ZELKBoxBlur.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int passes = 3;

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
    std::vector<float> row(std::size_t(width), 0.0F);
    for (int y = 0; y < height; ++y) {
        const std::span<float> line = std::span(values).subspan(std::size_t(y) * row.size(), row.size());
        if (std::all_of(line.begin(), line.end(), [](float value) { return value == 0.0F; }))
            continue;
        for (int pass = 0; pass < passes; ++pass) {
            blurRow(line, row.data());
            std::copy(row.begin(), row.end(), line.begin());
        }
    }
    std::vector<float> other(values.size());
    for (int pass = 0; pass < passes; ++pass) {
        blurColumns(values, other, width, height);
        values.swap(other);
    }
}

void ZELKBoxBlur::blurRow(std::span<const float> row, float *to) const
{
    const int count = int(row.size());
    const auto at = [&row, count](int x) { return x >= 0 && x < count ? row[std::size_t(x)] : 0.0F; };
    float sum = 0.0F;
    for (int x = 0; x < m_radius; ++x)
        sum += at(x);
    for (int x = 0; x < count; ++x) {
        sum += at(x + m_radius);
        to[x] = m_weight * (sum + m_part * (at(x - m_radius - 1) + at(x + m_radius + 1)));
        sum -= at(x - m_radius);
    }
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
