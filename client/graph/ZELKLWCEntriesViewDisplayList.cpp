#include "ZELKLWCEntriesViewDisplayList.h"

#include "ZELKEventVocabulary.h"

#include <algorithm>

namespace {

/// Finds by the state word; any range whose items have one.
template <typename Items>
auto withState(Items &items, const QString &state)
{
    return std::find_if(items.begin(), items.end(),
                        [&state](const auto &item) { return item.state == state; });
}

} // namespace

ZELKLWCEntriesViewDisplayList ZELKLWCEntriesViewDisplayList::displayList(double columnWidth)
{
    ZELKLWCEntriesViewDisplayList list(columnWidth);
    list.setSelectorString(Selector::pathForState, ZELKStateOff);
    list.setSelectorString(Selector::roundedPathForState, ZELKStateAsleep);
    list.setSelectorString(Selector::roundedPathForState, ZELKStateUnmonitored);
    return list;
}

void ZELKLWCEntriesViewDisplayList::setSelectorString(Selector selector, const QString &state)
{
    if (!m_stateOrder.contains(state))
        m_stateOrder.append(state);
    const auto known = withState(m_shapes, state);
    if (known == m_shapes.end())
        m_shapes.push_back({state, selector});
    else
        known->selector = selector;
}

ZELKLWCEntriesViewDisplayList::Selector
ZELKLWCEntriesViewDisplayList::selectorForState(const QString &state) const
{
    const auto known = withState(m_shapes, state);
    return known == m_shapes.end() ? Selector::pathForState : known->selector;
}

void ZELKLWCEntriesViewDisplayList::removeAllObjects()
{
    m_states.clear();
    m_words.clear();
    m_batteries.removeAllObjects();
}

ZELKLWCEntriesViewDisplayList::Word ZELKLWCEntriesViewDisplayList::wordFor(const QString &state)
{
    const auto known = withState(m_words, state);
    const auto word = Word(known - m_words.begin());
    if (known == m_words.end())
        m_words.push_back({state, ZELKBlockRanges(m_columnWidth)});
    return word;
}

void ZELKLWCEntriesViewDisplayList::addState(const ZELKLWCEntriesViewState &block)
{
    if (!block.state.isNull())
        addBlock(wordFor(block.state), block.bounds, block.entry);
}

void ZELKLWCEntriesViewDisplayList::addBlock(Word word, const QRectF &bounds, const ZELKLWCLogEntry *entry)
{
    Kept &kept = m_words[word];
    kept.ranges.add(bounds.x(), bounds.x() + bounds.width());
    const bool isThin = bounds.width() >= 0.0 && bounds.width() <= ZELKBlockRanges::thinWidth;
    if (!isThin || !(m_columnWidth > 0.0))
        m_states.push_back({bounds, kept.state, entry});
}

std::vector<ZELKBlockRange> ZELKLWCEntriesViewDisplayList::rangesForState(const QString &state) const
{
    const auto known = withState(m_words, state);
    return known == m_words.end() ? std::vector<ZELKBlockRange>() : known->ranges.ranges();
}

// MARK: shapes

QPainterPath ZELKLWCEntriesViewDisplayList::combinedPathForState(const QString &state) const
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const ZELKLWCEntriesViewState &block : m_states)
        if (block.state == state)
            path.addPath(shapeOf(block));
    return path;
}

QPainterPath ZELKLWCEntriesViewDisplayList::shapeOf(const ZELKLWCEntriesViewState &block) const
{
    return selectorForState(block.state) == Selector::roundedPathForState ? roundedPathForState(block)
                                                                          : pathForState(block);
}

QPainterPath ZELKLWCEntriesViewDisplayList::pathForState(const ZELKLWCEntriesViewState &block)
{
    QPainterPath path;
    path.addRect(block.bounds.normalized());
    return path;
}

QPainterPath ZELKLWCEntriesViewDisplayList::roundedPathForState(const ZELKLWCEntriesViewState &block)
{
    if (!(block.bounds.width() > radius))
        return pathForState(block);
    const double left = block.bounds.x();
    const double right = left + block.bounds.width();
    const double lower = block.bounds.y();
    const double upper = lower + block.bounds.height();
    constexpr double across = 2.0 * radius;
    // QPainterPath counts angles for a y that grows downwards: here 90 degrees is the circle's lower end.
    QPainterPath path(QPointF((left + right) / 2.0, upper));
    path.arcTo(QRectF(left, upper - across, across, across), 270.0, -90.0);
    path.lineTo(left, lower);
    path.lineTo(right, lower);
    path.arcTo(QRectF(right - across, upper - across, across, across), 0.0, -90.0);
    path.closeSubpath();
    return path;
}

// MARK: finding

const ZELKLWCEntriesViewState *ZELKLWCEntriesViewDisplayList::blockAtPoint(QPointF point,
                                                                           const QStringList &coloured) const
{
    const auto answers = [&](const ZELKLWCEntriesViewState &block) {
        const QRectF &bounds = block.bounds;
        const double right = point.x() - bounds.x();
        const double up = point.y() - bounds.y();
        return bounds.width() > ZELKBlockRanges::thinWidth && right >= 0.0 && right < bounds.width() &&
               up >= 0.0 && up < bounds.height() && coloured.contains(block.state);
    };
    const auto found = std::find_if(m_states.begin(), m_states.end(), answers);
    return found == m_states.end() ? nullptr : &*found;
}
