#include "ZELKTextCell.h"

#include "ZELKAssertion.h"
#include "ZELKAttributedString.h"

#include <QApplication>
#include <QPainter>

ZELKTextCell::ZELKTextCell(int textRole, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_textRole(textRole)
{
}

void ZELKTextCell::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    zelkGuard([&] {
        QStyleOptionViewItem cell = option;
        const bool isEnabled = cell.state.testFlag(QStyle::State_Enabled);
        const bool isActive = cell.state.testFlag(QStyle::State_Active);
        cell.palette.setCurrentColorGroup(!isEnabled ? QPalette::Disabled
                                          : isActive ? QPalette::Active
                                                     : QPalette::Inactive);
        painter->save();
        drawBackground(*painter, cell, index);
        drawInterior(*painter, cell, index);
        painter->restore();
    });
}

void ZELKTextCell::drawBackground(QPainter &painter, const QStyleOptionViewItem &cell,
                                  const QModelIndex &) const
{
    const QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, &painter, cell.widget);
    if (!cell.state.testFlag(QStyle::State_HasFocus) || cell.state.testFlag(QStyle::State_Selected))
        return;
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(cell);
    focus.backgroundColor = cell.palette.color(QPalette::Base);
    style->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, cell.widget);
}

void ZELKTextCell::drawInterior(QPainter &painter, const QStyleOptionViewItem &cell,
                                const QModelIndex &index) const
{
    const QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();
    const int inset = textInset(*style);
    drawText(painter, cell.rect.adjusted(inset, 0, -inset, 0), index, colours(cell));
}

int ZELKTextCell::textInset(const QStyle &style)
{
    return style.pixelMetric(QStyle::PM_LayoutLeftMargin);
}

void ZELKTextCell::drawText(QPainter &painter, const QRectF &frame, const QModelIndex &index,
                            const ZELKTextColours &colours) const
{
    m_lines.draw(painter, frame, index.data(m_textRole).value<ZELKAttributedString>(), colours);
}

const ZELKTextColours &ZELKTextCell::colours(const QStyleOptionViewItem &cell) const
{
    const bool isSelected = cell.state.testFlag(QStyle::State_Selected);
    Colours &known = m_colours[isSelected];
    const QPalette::ColorGroup group = cell.palette.currentColorGroup();
    if (group != known.group || !cell.palette.isCopyOf(known.palette))
        known = {cell.palette, group, ZELKTextColours::fromPalette(cell.palette, isSelected)};
    return known.colours;
}
