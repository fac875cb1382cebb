#include "BLRoundedTableCell.h"

#include "ZELKCapsule.h"

#include <QPainter>

namespace {

/// Black or white, whichever stands out from the colour as it looks on the base.
ZELKTextColours coloursOn(const QColor &background, const QColor &base)
{
    const double share = background.alphaF();
    const double brightness = share * qGray(background.rgb()) + (1.0 - share) * qGray(base.rgb());
    ZELKTextColours colours;
    colours.text = brightness > 127.0 ? Qt::black : Qt::white;
    colours.dimmed = colours.text;
    return colours;
}

} // namespace

BLRoundedTableCell::BLRoundedTableCell(int textRole, Background background, QObject *parent)
    : ZELKTextCell(textRole, parent)
    , m_background(std::move(background))
{
}

void BLRoundedTableCell::drawInterior(QPainter &painter, const QStyleOptionViewItem &cell,
                                      const QModelIndex &index) const
{
    const QRectF textFrame = ZELKCapsule::textFrame(cell.rect);
    const bool isSelected = cell.state.testFlag(QStyle::State_Selected);
    const std::optional<QColor> background = isSelected ? std::nullopt : m_background(index);
    if (!background) {
        drawText(painter, textFrame, index, colours(cell));
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(*background);
    painter.drawPath(ZELKCapsule::inFrame(cell.rect).path());
    painter.restore();
    drawText(painter, textFrame, index, coloursOn(*background, cell.palette.color(QPalette::Base)));
}
