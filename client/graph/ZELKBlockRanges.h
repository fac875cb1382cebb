#pragma once

#include <vector>

/// A stretch of the time axis that blocks of one state cover, in points.
struct ZELKBlockRange
{
    double from = 0.0;
    double to = 0.0;
    /// Wide enough to have a shape of its own and be painted singly. Others are thin: what counts is the
    /// share that they cover of each pixel.
    bool wide = false;

    double width() const { return to - from; }
    friend bool operator==(const ZELKBlockRange &, const ZELKBlockRange &) = default;
};

/// The blocks of one state on their way to the painter, who must cover every place once however many blocks
/// overlap there. Thin blocks that come one behind the other within a column become one range with the sum of
/// their widths, so that there are never more of them than columns.
class ZELKBlockRanges
{
public:
    /// Blocks up to this width, in points, are thin.
    static constexpr double thinWidth = 2.0;

    /// `columnWidth` in points; 0 merges nothing.
    explicit ZELKBlockRanges(double columnWidth = 0.0)
        : m_columnWidth(columnWidth)
    {
    }

    /// Where a block begins and ends; the other way round it is thin, whatever its width.
    void add(double x1, double x2);
    /// From left to right, none overlapping another. Wide ones that overlapped are one; of a wide and a thin
    /// one that overlapped each is cut where the other, which began first, ends. Ones that touch stay two.
    std::vector<ZELKBlockRange> ranges() const;

private:
    void addThin(double from, double to);

    double m_columnWidth;
    double m_thinEnd = 0.0; // where the last thin block really ended
    std::vector<ZELKBlockRange> m_ranges;
};
