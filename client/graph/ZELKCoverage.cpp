#include "ZELKCoverage.h"

#include <algorithm>
#include <cmath>

namespace {

// Edges that rise less, in pixels, cover nothing, and their slope is no number to reckon with.
constexpr double levelEdge = 1e-12;

} // namespace

ZELKCoverage::ZELKCoverage(const QRect &box)
    : m_box(box)
    , m_stride(box.width() + 2) // an edge on the right border adds to the cell behind its own
    , m_areas(std::size_t(m_stride) * std::size_t(std::max(0, box.height())), 0.0F)
    , m_shares(std::size_t(m_stride), 0.0F)
{
    forgetBounds();
}

void ZELKCoverage::forgetBounds()
{
    m_left = m_box.width();
    m_right = -1;
    m_top = m_box.height();
    m_bottom = -1;
}

void ZELKCoverage::addEdge(QPointF from, QPointF to)
{
    for (const double border : {double(m_box.left()), double(m_box.left() + m_box.width())}) {
        if ((from.x() - border) * (to.x() - border) < 0.0) {
            const double part = (border - from.x()) / (to.x() - from.x());
            const QPointF crossing(border, from.y() + part * (to.y() - from.y()));
            addEdge(from, crossing);
            addEdge(crossing, to);
            return;
        }
    }
    addPiece(from, to);
}

/// An edge that does not cross the left border, nor the right one. Beyond them it runs upright along the
/// border.
void ZELKCoverage::addPiece(QPointF from, QPointF to)
{
    double sign = 1.0;
    if (from.y() > to.y()) {
        std::swap(from, to);
        sign = -1.0;
    }
    from -= m_box.topLeft();
    to -= m_box.topLeft();
    const double above = std::max(from.y(), 0.0);
    const double below = std::min(to.y(), double(m_box.height()));
    if (!(below - above > levelEdge))
        return;
    const double slope = (to.x() - from.x()) / (to.y() - from.y());
    const double width = m_box.width();
    const int first = int(above);
    const int last = std::min(m_box.height() - 1, int(below));
    double x = from.x() + slope * (above - from.y());
    const double start = std::clamp(x, 0.0, width);
    double here = start;
    const auto cross = [&](int y, double part) {
        x += slope * part;
        const double next = std::clamp(x, 0.0, width);
        addToRow(row(y), std::min(here, next), std::max(here, next), sign * part);
        here = next;
    };
    cross(first, std::min(first + 1.0, below) - above);
    for (int y = first + 1; y < last; ++y)
        cross(y, 1.0);
    if (last > first)
        cross(last, below - last);
    noteTouched(QRect(QPoint(int(std::min(start, here)), first), QPoint(int(std::max(start, here)), last)));
}

void ZELKCoverage::noteTouched(const QRect &cells)
{
    m_left = std::min(m_left, cells.left());
    m_right = std::max(m_right, cells.right());
    m_top = std::min(m_top, cells.top());
    m_bottom = std::max(m_bottom, cells.bottom());
}

/// An edge that crosses the row from `left` to `right`, and `area` of its height.
inline void ZELKCoverage::addToRow(float *row, double left, double right, double area)
{
    const int first = int(left);
    const int last = int(right);
    if (first != last) {
        addToColumns(row, left, right, area);
        return;
    }
    const double beside = area * ((left + right) / 2.0 - first);
    row[first] += float(area - beside);
    row[first + 1] += float(beside);
}

/// The same of an edge that leaves the column in which it begins.
void ZELKCoverage::addToColumns(float *row, double left, double right, double area)
{
    const int first = int(left);
    const int last = int(right);
    const double slope = 1.0 / (right - left);
    const double inFirst = first + 1.0 - left;
    double done = 0.5 * slope * inFirst * inFirst;
    row[first] += float(area * done);
    for (int x = first + 1; x < last; ++x) {
        const double upTo = slope * (x - left + 0.5);
        row[x] += float(area * (upTo - done));
        done = upTo;
    }
    const double inLast = right - last;
    const double upTo = 1.0 - 0.5 * slope * inLast * inLast;
    row[last] += float(area * (upTo - done));
    row[last + 1] += float(area * (1.0 - upTo));
}

void ZELKCoverage::addLine(std::span<const QPointF> points, double width)
{
    QPointF at;
    QPointF aside; // from the line to its left border, where something was added before
    bool isBegun = false;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const QPointF from = points[i - 1];
        const QPointF to = points[i];
        const QPointF along = to - from;
        const double length = std::sqrt(along.x() * along.x() + along.y() * along.y());
        if (!(length > 0.0))
            continue;
        const QPointF next = QPointF(-along.y(), along.x()) * (width / 2.0 / length);
        if (isBegun)
            addJoint(from, aside, next);
        else
            addEdge(from + next, from - next);
        addEdge(from - next, to - next);
        addEdge(to + next, from + next);
        isBegun = true;
        aside = next;
        at = to;
    }
    if (isBegun)
        addEdge(at - aside, at + aside);
}

/// Where two pieces of a line meet: what is left of both ends and of the triangle that is missing outside
/// when those edges are left out that would be added once in each direction.
void ZELKCoverage::addJoint(QPointF at, QPointF before, QPointF after)
{
    const bool turnsLeft = before.x() * after.y() > before.y() * after.x();
    if (turnsLeft) {
        addEdge(at - before, at - after);
        addEdge(at, at + before);
        addEdge(at + after, at);
    } else {
        addEdge(at - before, at);
        addEdge(at, at - after);
        addEdge(at + after, at + before);
    }
}

std::span<const float> ZELKCoverage::takeRow(int y)
{
    const int end = std::min(m_right + 2, m_stride);
    if (m_left >= end)
        return {};
    float *areas = row(y);
    float sum = 0.0F;
    for (int x = m_left; x < end; ++x) {
        sum += areas[x];
        areas[x] = 0.0F;
        m_shares[std::size_t(x)] = std::min(1.0F, std::fabs(sum));
    }
    const int inBox = std::min(end, m_box.width());
    return std::span(m_shares).subspan(std::size_t(m_left), std::size_t(std::max(0, inBox - m_left)));
}
