#include "ZELKSymbolLabel.h"

#include "ZELKEnvironment.h"
#include "ZELKSymbolIcon.h"

#include <QPainter>

ZELKSymbolLabel::ZELKSymbolLabel(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ZELKSymbolLabel::setSymbol(const QString &symbol)
{
    if (symbol == m_symbol)
        return;
    m_icon = ZELKSymbolIcon::icon(*ZELKEnvironment::current().mainBundle, symbol);
    m_symbol = symbol;
    update();
}

void ZELKSymbolLabel::setLines(double lines)
{
    m_lines = lines;
    updateGeometry();
}

void ZELKSymbolLabel::setDimmed(bool isDimmed)
{
    m_isDimmed = isDimmed;
    update();
}

QSize ZELKSymbolLabel::sizeHint() const
{
    const int side = qRound(m_lines * fontMetrics().height());
    return {side, side};
}

void ZELKSymbolLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_icon.paint(&painter, rect(), Qt::AlignCenter, m_isDimmed ? QIcon::Disabled : QIcon::Normal);
}
