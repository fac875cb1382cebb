#pragma once

#include <QPointF>
#include <QRect>

#include <span>
#include <vector>

/// How much of each pixel shapes cover, made by adding up the signed areas right of their edges: nothing is
/// sorted, and an edge costs no more than the cells that it crosses, so that shapes of very many edges stay
/// cheap. Kept within a box; what lies outside of it is cut off.
///
/// Shapes are closed, in pixels, and all run the same way round. Where two overlap inside one pixel it counts
/// what both cover.
class ZELKCoverage
{
public:
    explicit ZELKCoverage(const QRect &box);

    void addEdge(QPointF from, QPointF to);
    /// A line of that width through the points, with square ends. Its corners are cut off: pointed ones would
    /// stick out of a noisy line like thorns.
    void addLine(std::span<const QPointF> points, double width);

    /// Hands over each row that edges were added to, as `take(y, x, shares)` with shares of 0 to 1 from the
    /// column `x` on, and forgets it.
    template <typename Take>
    void takeRows(const Take &take)
    {
        for (int y = m_top; y <= m_bottom; ++y)
            if (const std::span<const float> shares = takeRow(y); !shares.empty())
                take(y + m_box.top(), m_left + m_box.left(), shares);
        forgetBounds();
    }

private:
    float *row(int y) { return m_areas.data() + std::size_t(y) * std::size_t(m_stride); }
    void addPiece(QPointF from, QPointF to);
    void addToRow(float *row, double left, double right, double area);
    void addToColumns(float *row, double left, double right, double area);
    void addJoint(QPointF at, QPointF before, QPointF after);
    void noteTouched(const QRect &cells);
    std::span<const float> takeRow(int y);
    void forgetBounds();

    QRect m_box;
    int m_stride;
    std::vector<float> m_areas; // what a cell's share differs by from that of its left neighbour
    std::vector<float> m_shares;
    // Of the cells touched, from the box's corner.
    int m_left = 0;
    int m_right = 0;
    int m_top = 0;
    int m_bottom = 0;
};
