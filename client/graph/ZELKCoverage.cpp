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
    double x = from.x() + slope * (above - from.y());
    const double width = m_box.width();
    const int first = int(above);
    const int last = std::min(m_box.height() - 1, int(below));
    m_top = std::min(m_top, first);
    m_bottom = std::max(m_bottom, last);
    for (int y = first; y <= last; ++y) {
        const double part = std::min(y + 1.0, below) - std::max(double(y), above);
        const double next = x + slope * part;
        const auto [left, right] = std::minmax(std::clamp(x, 0.0, width), std::clamp(next, 0.0, width));
        addToRow(row(y), left, right, sign * part);
        x = next;
    }
}

/// An edge that crosses the row from `left` to `right`, and `area` of its height.
void ZELKCoverage::addToRow(float *row, double left, double right, double area)
{
    const int first = int(left);
    const int last = int(right);
    m_left = std::min(m_left, first);
    m_right = std::max(m_right, last);
    if (first == last) {
        const double beside = (left + right) / 2.0 - first;
        row[first] += float(area * (1.0 - beside));
        row[first + 1] += float(area * beside);
        return;
    }
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

void ZELKCoverage::addLine(QPointF from, QPointF to, double width)
{
    const QPointF along = to - from;
    const double length = std::hypot(along.x(), along.y());
    if (!(length > 0.0))
        return;
    const QPointF aside = QPointF(-along.y(), along.x()) * (width / 2.0 / length);
    addEdge(from + aside, from - aside);
    addEdge(from - aside, to - aside);
    addEdge(to - aside, to + aside);
    addEdge(to + aside, from + aside);
}

void ZELKCoverage::addJoint(QPointF before, QPointF at, QPointF after, double width)
{
    const QPointF in = at - before;
    const QPointF out = after - at;
    const double inLength = std::hypot(in.x(), in.y());
    const double outLength = std::hypot(out.x(), out.y());
    const double turn = in.x() * out.y() - in.y() * out.x();
    if (!(inLength > 0.0 && outLength > 0.0) || turn == 0.0)
        return;
    const double side = turn > 0.0 ? -width / 2.0 : width / 2.0;
    const QPointF first = QPointF(-in.y(), in.x()) * (side / inLength);
    const QPointF second = QPointF(-out.y(), out.x()) * (side / outLength);
    const QPointF corners[] = {at, at + (turn > 0.0 ? first : second), at + (turn > 0.0 ? second : first)};
    for (int i = 0; i < 3; ++i)
        addEdge(corners[(i + 2) % 3], corners[i]);
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
