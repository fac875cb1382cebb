#include "ZELKGuideDocument.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTextBlock>
#include <QUrl>

namespace {

constexpr int pointsPerInch = 72;
constexpr qreal spaceAround = 4;   // what a cell or a listing has below its text
constexpr int dotsPerMetre = 2835; // as many an inch
// A4 in points, with what stays free at each side.
constexpr QSizeF paper(595, 842);
constexpr QMarginsF margins(64, 60, 64, 70);

const QString style = QStringLiteral(R"(
body { font-family: "DejaVu Sans", sans-serif; font-size: 10pt; color: #222; }
h1 { font-size: 26pt; color: #1d3f72; }
h2 { font-size: 16pt; color: #1d3f72; margin-top: 20px; margin-bottom: 6px; }
h3 { font-size: 11pt; margin-top: 12px; margin-bottom: 2px; }
p, li { line-height: 135%; }
pre, code, tt { font-family: "DejaVu Sans Mono", monospace; font-size: 8.5pt; }
pre { background-color: #eef1f6; margin-left: 8px; }
.picture { line-height: 100%; margin-top: 8px; margin-bottom: 8px; }
td { padding: 3px 10px 3px 0; }
)");

QRectF page()
{
    return QRectF({}, paper).marginsRemoved(margins);
}

} // namespace

ZELKGuideDocument::ZELKGuideDocument(const QString &html, const QMap<QString, QImage> &pictures)
    : m_html(html)
    , m_pictures(pictures)
{
    m_document.setDefaultStyleSheet(style);
    m_document.setDocumentMargin(0);
    m_ruler.setDotsPerMeterX(dotsPerMetre);
    m_ruler.setDotsPerMeterY(dotsPerMetre);
}

void ZELKGuideDocument::layOut(const QString &html)
{
    m_document.clear();
    m_document.documentLayout()->setPaintDevice(&m_ruler);
    for (auto picture = m_pictures.begin(); picture != m_pictures.end(); ++picture)
        m_document.addResource(QTextDocument::ImageResource, QUrl(picture.key()), *picture);
    m_document.setHtml(html);
    m_document.setTextWidth(page().width());
    m_pages = ZELKGuidePages::of(m_document, page().height());
}

/// A line for each heading with the page that it stands on.
QStringList ZELKGuideDocument::contents() const
{
    QStringList lines;
    for (QTextBlock block = m_document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() != 2)
            continue;
        const qreal top = m_document.documentLayout()->blockBoundingRect(block).top();
        lines.append(QStringLiteral("<tr><td>%1</td><td align=\"right\">%2</td></tr>")
                         .arg(block.text().toHtmlEscaped())
                         .arg(m_pages.pageAt(top) + 1));
    }
    return lines;
}

bool ZELKGuideDocument::write(const QString &path)
{
    QPdfWriter writer(path);
    writer.setTitle(QStringLiteral("Lullwatch User Guide"));
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    painter.scale(qreal(writer.logicalDpiX()) / pointsPerInch, qreal(writer.logicalDpiY()) / pointsPerInch);
    // Once with as many lines as the contents will have, and once with their numbers.
    const QString place = QStringLiteral("<p>CONTENTS</p>");
    const auto withContents = [&](const QStringList &lines) {
        return QString(m_html).replace(
            place, QStringLiteral("<table width=\"100%\">%1</table>").arg(lines.join(QString())));
    };
    layOut(m_html);
    layOut(withContents(contents()));
    layOut(withContents(contents()));
    for (int number = 0; number < m_pages.pages.size(); ++number) {
        if (number > 0)
            writer.newPage();
        drawPage(painter, number);
    }
    return painter.end();
}

void ZELKGuideDocument::drawPage(QPainter &painter, int number) const
{
    const QRectF area = page();
    painter.save();
    const auto [top, bottom] = m_pages.pages[number];
    painter.translate(area.left(), area.top() - top);
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(0, top - 1, area.width(), bottom - top + spaceAround);
    context.palette.setColor(QPalette::Text, QColor(0x22, 0x22, 0x22));
    painter.setClipRect(context.clip);
    m_document.documentLayout()->draw(&painter, context);
    painter.restore();
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(8);
    painter.setFont(font);
    painter.setPen(QColor(0x77, 0x77, 0x77));
    painter.drawText(QRectF(area.left(), area.bottom() + 24, area.width(), 16), Qt::AlignCenter,
                     QString::number(number + 1));
}
