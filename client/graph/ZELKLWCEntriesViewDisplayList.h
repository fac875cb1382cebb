#pragma once

#include "ZELKBlockRanges.h"
#include "ZELKLWCEntriesViewBatteries.h"
#include "ZELKLWCEntriesViewState.h"

#include <QPainterPath>
#include <QStringList>

#include <vector>

/// Everything there is to draw of one period: blocks of states, and the curves of the batteries. In points of
/// an unflipped view. Filled by ZELKDisplayListBuilder.
class ZELKLWCEntriesViewDisplayList
{
public:
    /// Radius of a block's upper corners, in points.
    static constexpr double radius = 2.0;
    /// What makes the shape of a block.
    enum class Selector { pathForState, roundedPathForState };
    /// A state word whose blocks are kept, by its place in the list.
    using Word = std::size_t;

    /// `columnWidth` in points: what stands in the same column may be merged where the picture is the same,
    /// so that the list stays as small as the chart is wide. An eighth of a pixel cannot be told from the
    /// whole. 0 keeps every block and every point.
    explicit ZELKLWCEntriesViewDisplayList(double columnWidth = 0.0)
        : m_columnWidth(columnWidth)
    {
    }
    /// A list in which "Off" is painted first, as rectangles, then "Asleep" and "Unmonitored", rounded.
    static ZELKLWCEntriesViewDisplayList displayList(double columnWidth = 0.0);

    /// Of the curves' columns, in points. A line is wider than a thin block and bears more.
    double curveColumnWidth() const { return 2.0 * m_columnWidth; }
    /// Blocks of the word get this shape, others are rectangles. A word that is new to stateOrder() is
    /// painted after those in it.
    void setSelectorString(Selector selector, const QString &state);
    /// The words in the order of painting: what comes later lies on top.
    const QStringList &stateOrder() const { return m_stateOrder; }
    void setStateOrder(const QStringList &words) { m_stateOrder = words; }
    /// Shapes and stateOrder() stay.
    void removeAllObjects();

    /// Ignored when it has no state.
    void addState(const ZELKLWCEntriesViewState &block);
    /// For those who add many: the number of a word, made when it is new, and the block of that word.
    Word wordFor(const QString &state);
    void addBlock(Word word, const QRectF &bounds, const ZELKLWCLogEntry *entry);

    /// The blocks in the order of adding. Where columns are merged, those up to 2 points wide are missing,
    /// which no pointer finds, unless they run backwards.
    const std::vector<ZELKLWCEntriesViewState> &states() const { return m_states; }
    /// What the blocks of a state cover, for the painter. Their heights are not looked at.
    std::vector<ZELKBlockRange> rangesForState(const QString &state) const;
    /// The shapes of all of a state's states() in one path, filled where any of them is. For pictures of few
    /// blocks.
    QPainterPath combinedPathForState(const QString &state) const;
    Selector selectorForState(const QString &state) const;
    /// The shape that the block's state gives it.
    QPainterPath shapeOf(const ZELKLWCEntriesViewState &block) const;
    /// A rectangle.
    static QPainterPath pathForState(const ZELKLWCEntriesViewState &block);
    /// The upper corners rounded, the lower ones square on the axis; a rectangle when the block is not wider
    /// than the radius.
    static QPainterPath roundedPathForState(const ZELKLWCEntriesViewState &block);

    /// The block that answers for a place: the first one added that is wider than 2 points and of one of
    /// `coloured` words. Null when there is none. Left and lower edge belong to a block.
    const ZELKLWCEntriesViewState *blockAtPoint(QPointF point, const QStringList &coloured) const;

    ZELKLWCEntriesViewBatteries &batteries() { return m_batteries; }
    const ZELKLWCEntriesViewBatteries &batteries() const { return m_batteries; }

private:
    struct Kept
    {
        QString state;
        ZELKBlockRanges ranges;
    };
    struct Shape
    {
        QString state;
        Selector selector;
    };

    double m_columnWidth;
    QStringList m_stateOrder;
    std::vector<Shape> m_shapes;
    std::vector<Kept> m_words;
    std::vector<ZELKLWCEntriesViewState> m_states;
    ZELKLWCEntriesViewBatteries m_batteries;
};
