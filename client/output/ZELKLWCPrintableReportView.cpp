#include "ZELKLWCPrintableReportView.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEntryKeyPath.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKFormatter.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKLWCLogTableModel.h"
#include "ZELKLWCLogTableView.h"
#include "ZELKPaperText.h"
#include "ZELKSystemFonts.h"

#include <QLabel>
#include <QLayout>
#include <QPainter>

#include <algorithm>

namespace {

const QString className = QStringLiteral("ZELKLWCPrintableReportView");
const QString sourceFile = QStringLiteral("client/ZELKLWCPrintableReportView");

enum Location { TableView = 22, DataController = 23, Title = 24, Nib = 34 };

template <typename Type>
const Type &given(const Type *argument, Location location, const char *name)
{
    if (!argument)
        ZELKAssertion::failParameter(sourceFile, location, name);
    return *argument;
}

QList<ZELKLWCLogEntry *> rowsOf(const ZELKLWCLogTableModel &data)
{
    QList<ZELKLWCLogEntry *> rows(data.rowCount());
    for (int row = 0; row < rows.size(); ++row)
        rows[row] = data.entryAtRow(row);
    return rows;
}

ZELKTextAttributes attributesOfRows()
{
    ZELKTextAttributes attributes;
    attributes.family = ZELKSystemFonts::family();
    attributes.pointSize = ZELKSystemFonts::miniSystemFontSize();
    attributes.paragraph.lineBreak = ZELKParagraphStyle::LineBreak::TruncateTail;
    return attributes;
}

QVariant valueFor(const QString &identifier, ZELKLWCLogEntry &entry)
{
    return identifier == QLatin1String("event") ? QVariant::fromValue(&entry)
                                                : ZELKEntryKeyPath::value(entry, identifier);
}

const QString &givenTitle(const QString &title)
{
    if (title.isNull())
        ZELKAssertion::failParameter(sourceFile, Title, "inTitle");
    return title;
}

std::unique_ptr<QWidget> loadPageHeader()
{
    std::unique_ptr<QWidget> header =
        ZELKInterfaceLoader::loadIfSound(*ZELKEnvironment::current().mainBundle, className);
    if (!header || !header->layout())
        ZELKAssertion::fail(sourceFile, Nib, ZELKFormat("Unable to load %@ nib.", {className}));
    return header;
}

/// The interface file's sizes are points, which its widgets take for pixels.
QLabel *fieldOf(const QWidget &pageHeader, const char *name)
{
    auto *field = ZELKInterfaceLoader::outlet<QLabel>(pageHeader, className, name);
    QFont font = field->font();
    font.setPixelSize(qRound(font.pointSizeF()));
    field->setFont(font);
    return field;
}

ZELKReportLayout::Heights heightsOf(const QWidget &pageHeader, const ZELKPaperFont &rowFont)
{
    const double row = rowFont.boundingHeight();
    return {double(pageHeader.height()), row, row};
}

} // namespace

struct ZELKLWCPrintableReportView::Canvas
{
    QPainter &painter;
    const QRectF &area;

    bool meets(const QRectF &rect) const { return rect.intersects(area); }
    QPointF turned(QPointF place) const
    {
        return {place.x() - area.x(), area.y() + area.height() - place.y()};
    }
    QRectF turned(const QRectF &rect) const
    {
        return {turned(QPointF(rect.x(), rect.y() + rect.height())), rect.size()};
    }
};

// MARK: layout

ZELKLWCPrintableReportView::ZELKLWCPrintableReportView(const ZELKLWCLogTableView *inTableView,
                                                       const ZELKLWCLogTableModel *inDataController,
                                                       const QString &inTitle,
                                                       const ZELKReportLayout::Paper &paper)
    : m_columns(ZELKReportColumn::columnsOf(given(inTableView, TableView, "inTableView")))
    , m_arrangedObjects(rowsOf(given(inDataController, DataController, "inDataController")))
    , m_title(givenTitle(inTitle))
    , m_pageHeaderView(loadPageHeader())
    , m_pageTextField(fieldOf(*m_pageHeaderView, "pageTextField"))
    , m_titleTextField(fieldOf(*m_pageHeaderView, "titleTextField"))
    , m_rowFont(fontForRow())
    , m_headingFont(ZELKSystemFonts::systemFontSize(), true)
    , m_rowAttributes(attributesOfRows())
    , m_tableWidth(ZELKReportColumn::tableWidth(m_columns))
    , m_layout(paper, heightsOf(*m_pageHeaderView, m_rowFont), m_arrangedObjects.size())
{
    m_pageHeaderView->resize(qRound(m_layout.printableArea.width()), m_pageHeaderView->height());
}

ZELKLWCPrintableReportView::~ZELKLWCPrintableReportView() = default;

void ZELKLWCPrintableReportView::setColumns(const QList<ZELKReportColumn> &columns)
{
    m_columns = columns;
    m_tableWidth = ZELKReportColumn::tableWidth(columns);
}

QString ZELKLWCPrintableReportView::printJobTitle()
{
    return ZELKEnvironment::current().mainBundle->infoDictionary().string(QStringLiteral("CFBundleName"));
}

QString ZELKLWCPrintableReportView::applicationName()
{
    return printJobTitle();
}

ZELKPaperFont ZELKLWCPrintableReportView::fontForRow()
{
    return ZELKPaperFont(ZELKSystemFonts::miniSystemFontSize());
}

// MARK: drawing

void ZELKLWCPrintableReportView::drawRect(QPainter &painter, const QRectF &area) const
{
    const Canvas canvas{painter, area};
    const ZELKReportLayout::Pages pages = m_layout.pagesIn(area);
    for (qint64 page = pages.first; page <= pages.last; ++page)
        drawPage(canvas, page);
}

void ZELKLWCPrintableReportView::drawPage(const Canvas &canvas, qint64 page) const
{
    /// As wide as it takes to know whether something is in the area.
    constexpr double probeWidth = 5.0;
    const auto isSeen = [&](double y) {
        return canvas.meets({m_layout.printableArea.x(), y, probeWidth, m_layout.heights.row});
    };
    if (isSeen(m_layout.pageHeaderY(page)))
        drawPageHeader(canvas, page);
    drawColumnHeadings(canvas, m_layout.columnHeadingsY(page));
    const qint64 first = m_layout.firstRow(page);
    for (qint64 row = first; row < first + m_layout.rowsOnPage(page); ++row) {
        const double y = m_layout.rowY(row);
        if (isSeen(y))
            drawRow(canvas, m_arrangedObjects.at(row), y);
        drawRule(canvas, y);
    }
}

void ZELKLWCPrintableReportView::drawPageHeader(const Canvas &canvas, qint64 page) const
{
    m_pageTextField->setText(
        ZELKFormat(ZELKInterfaceLoader::text(className, QStringLiteral("Page %d of %d")), {page, pages()}));
    m_titleTextField->setText(m_title.simplified()); // a day may be padded with a space
    m_pageHeaderView->layout()->invalidate();
    m_pageHeaderView->layout()->setGeometry(m_pageHeaderView->rect());
    const QRectF header = canvas.turned(QRectF(m_layout.printableArea.x(), m_layout.pageHeaderY(page),
                                               m_layout.printableArea.width(), m_layout.heights.header));
    for (const QLabel *field : {m_titleTextField, m_pageTextField})
        ZELKPaperText::draw(canvas.painter, QRectF(field->geometry()).translated(header.topLeft()),
                            ZELKAttributedString(field->text()),
                            ZELKPaperFont(field->font().pixelSize(), field->font().bold()),
                            field->alignment());
}

/// In the room that the page header leaves at its foot, a little above the first row where they fit so.
void ZELKLWCPrintableReportView::drawColumnHeadings(const Canvas &canvas, double y) const
{
    const double most = m_layout.heights.titleRow / 4.0;
    const double room = m_pageHeaderView->layout()->contentsMargins().bottom() + most;
    const double gap = std::clamp(room - m_headingFont.lineHeight(), 0.0, most);
    const double bottom = y + m_layout.heights.titleRow - most + gap;
    double x = m_layout.printableArea.x();
    for (const ZELKReportColumn &column : m_columns) {
        const double width = column.cellWidth(m_tableWidth, m_layout.printableArea.width());
        const QRectF cell(x, bottom, width - m_columnPadding, m_headingFont.lineHeight());
        ZELKPaperText::draw(canvas.painter, canvas.turned(cell), ZELKAttributedString(column.title),
                            m_headingFont, column.alignment);
        x += width;
    }
}

void ZELKLWCPrintableReportView::drawRow(const Canvas &canvas, ZELKLWCLogEntry *entry, double y) const
{
    double x = m_layout.printableArea.x();
    for (const ZELKReportColumn &column : m_columns) {
        const double width = column.cellWidth(m_tableWidth, m_layout.printableArea.width());
        drawCell(canvas, column, entry, {x, y, width - m_columnPadding, m_layout.heights.row});
        x += width;
    }
}

/// One line, however many the formatter makes of the value.
void ZELKLWCPrintableReportView::drawCell(const Canvas &canvas, const ZELKReportColumn &column,
                                          ZELKLWCLogEntry *entry, const QRectF &cell) const
{
    if (column.identifier.isEmpty()) {
        ZELKConsole::log(QStringLiteral("Error column does not have an identifier set!"));
        return; // of nothing there is no value
    }
    if (!column.formatter)
        return;
    const ZELKAttributedString text = column.formatter->attributedStringForObjectValue(
        valueFor(column.identifier, *entry), m_rowAttributes);
    const qsizetype lineEnd = text.string().indexOf(QLatin1Char('\n'));
    ZELKPaperText::draw(canvas.painter, canvas.turned(cell), lineEnd < 0 ? text : text.substring(0, lineEnd),
                        m_rowFont, column.alignment);
}

void ZELKLWCPrintableReportView::drawRule(const Canvas &canvas, double y) const
{
    constexpr double ruleWidth = 0.25;
    const QPointF start(m_layout.printableArea.x(), y);
    canvas.painter.save();
    canvas.painter.setPen(QPen(Qt::lightGray, ruleWidth, Qt::SolidLine, Qt::FlatCap));
    canvas.painter.drawLine(canvas.turned(start),
                            canvas.turned(start + QPointF(m_layout.printableArea.width(), 0.0)));
    canvas.painter.restore();
}
