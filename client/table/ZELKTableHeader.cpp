#include "ZELKTableHeader.h"

#include "ZELKAssertion.h"

#include <QPainter>
#include <QStyleOptionHeaderV2>

ZELKTableHeader::ZELKTableHeader(QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(true);
}

void ZELKTableHeader::paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const
{
    if (!m_inset) {
        QHeaderView::paintSection(painter, rect, logicalIndex);
        return;
    }
    zelkGuard([&] {
        painter->save();
        painter->setClipRect(rect, Qt::IntersectClip);
        drawHeading(*painter, rect, logicalIndex);
        painter->restore();
    });
}

/// The parts as every style draws them, with the text moved.
void ZELKTableHeader::drawHeading(QPainter &painter, const QRect &rect, int column) const
{
    QStyleOptionHeaderV2 heading;
    initStyleOption(&heading);
    initStyleOptionForIndex(&heading, column);
    heading.rect = rect;
    style()->drawControl(QStyle::CE_HeaderSection, &heading, &painter, this);
    QStyleOptionHeaderV2 part = heading;
    part.rect = style()->subElementRect(QStyle::SE_HeaderLabel, &heading, this);
    if (isRightToLeft())
        part.rect.setRight(rect.right() - m_inset(column));
    else
        part.rect.setLeft(rect.left() + m_inset(column));
    style()->drawControl(QStyle::CE_HeaderLabel, &part, &painter, this);
    if (heading.sortIndicator == QStyleOptionHeader::None)
        return;
    part.rect = style()->subElementRect(QStyle::SE_HeaderArrow, &heading, this);
    style()->drawPrimitive(QStyle::PE_IndicatorHeaderArrow, &part, &painter, this);
}
