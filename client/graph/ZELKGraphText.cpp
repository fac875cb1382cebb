#include "ZELKGraphText.h"

#include "ZELKTextColours.h"
#include "ZELKTextDocument.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QPainter>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr auto newline = QLatin1Char('\n');

double lineHeight(const QFont &font)
{
    return std::ceil(QFontMetricsF(font).lineSpacing());
}

void layOut(QTextDocument &document, const QRectF &frame, const ZELKAttributedString &label)
{
    ZELKTextDocument::fill(document, label, ZELKTextColours::forPaper());
    document.setTextWidth(std::min(std::ceil(document.idealWidth()), std::max(1.0, frame.width())));
}

QPointF topLeftOrigin(const QRectF &frame, const QSizeF &label)
{
    return {frame.x(), frame.y() + frame.height() - label.height()};
}

QPointF bannerOrigin(const QRectF &frame, const QSizeF &label)
{
    return {std::floor(frame.width() / 2.0 - label.width() / 2.0),
            std::floor(frame.height() / 5.0 * 3.0 - label.height() / 2.0)};
}

void drawAt(QPainter &painter, const ZELKPixelSpace &space, QPointF lowerLeft, QTextDocument &document)
{
    painter.save();
    painter.translate(space.turned({lowerLeft, document.size()}).topLeft());
    QAbstractTextDocumentLayout::PaintContext context; // whose palette is the desktop's, dark or not
    context.palette.setColor(QPalette::Text, ZELKTextColours::forPaper().text);
    document.documentLayout()->draw(&painter, context);
    painter.restore();
}

} // namespace

ZELKTextAttributes ZELKGraphText::attributes(double pointSize)
{
    ZELKTextAttributes attributes;
    attributes.pointSize = pointSize;
    attributes.colour = ZELKTextColour::rgb(0x55, 0x55, 0x55);
    attributes.paragraph.alignment = ZELKParagraphStyle::Alignment::Centre;
    attributes.paragraph.lineBreak = ZELKParagraphStyle::LineBreak::TruncateTail;
    return attributes;
}

QSizeF ZELKGraphText::size(const QString &text, const ZELKTextAttributes &attributes)
{
    const QFont font = ZELKTextDocument::font(attributes);
    const QFontMetricsF metrics(font);
    const QStringList lines = text.split(newline);
    double width = 0.0;
    for (const QString &line : lines)
        width = std::max(width, metrics.horizontalAdvance(line));
    return {std::ceil(width), lineHeight(font) * double(lines.size())};
}

void ZELKGraphText::draw(QPainter &painter, const ZELKPixelSpace &space, const QRectF &rect,
                         const QString &text, const ZELKTextAttributes &attributes)
{
    const QFont font = ZELKTextDocument::font(attributes);
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    painter.setPen(ZELKTextColours::forPaper().colour(attributes.colour));
    QRectF line = space.turned(rect);
    line.setHeight(lineHeight(font));
    for (const QString &part : text.split(newline)) {
        painter.drawText(line, int(Qt::AlignCenter) | Qt::TextSingleLine,
                         metrics.elidedText(part, Qt::ElideRight, rect.width()));
        line.translate(0.0, line.height());
    }
}

void ZELKGraphText::drawTopLeft(QPainter &painter, const ZELKPixelSpace &space, const QRectF &frame,
                                const ZELKAttributedString &label)
{
    QTextDocument document;
    layOut(document, frame, label);
    drawAt(painter, space, topLeftOrigin(frame, document.size()), document);
}

void ZELKGraphText::drawBanner(QPainter &painter, const ZELKPixelSpace &space, const QRectF &frame,
                               const ZELKAttributedString &label)
{
    QTextDocument document;
    layOut(document, frame, label);
    drawAt(painter, space, bannerOrigin(frame, document.size()), document);
}

bool ZELKGraphText::fitTogether(const QRectF &frame, const ZELKAttributedString &topLeft,
                                const ZELKAttributedString &banner)
{
    QTextDocument above;
    QTextDocument below;
    layOut(above, frame, topLeft);
    layOut(below, frame, banner);
    const double top = bannerOrigin(frame, below.size()).y() + below.size().height();
    return top <= topLeftOrigin(frame, above.size()).y();
}
