#include "ZELKInspectorTableView.h"

#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKInspectorCell.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCPresentationAssistant.h"
#include "ZELKTextColours.h"
#include "ZELKTextDocument.h"

#include <QTextTable>

#include <algorithm>
#include <cmath>

namespace {

constexpr double keyPart = 38.0; // of the width, in hundredths
constexpr double cellPadding = 2.0;
constexpr double hangingIndent = 12.0; // of what takes several lines in a list
constexpr int longestFigure = 9;       // characters

struct Row
{
    ZELKInspectorCell key;
    ZELKInspectorCell value;
};

using Rows = std::vector<Row>;

double widthOf(const ZELKAttributedString &text)
{
    double width = 0.0;
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : text.runs()) {
        width += QFontMetricsF(ZELKTextDocument::font(run.attributes))
                     .horizontalAdvance(text.string().mid(start, run.length));
        start += run.length;
    }
    return width;
}

double ascentOf(const ZELKAttributedString &text)
{
    return text.isEmpty() ? 0.0 : QFontMetricsF(ZELKTextDocument::font(text.attributesAt(0))).ascent();
}

void insert(QTextCursor cursor, const ZELKAttributedString &text, const ZELKTextColours &colours,
            const QTextBlockFormat &format)
{
    cursor.setBlockFormat(format);
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : text.runs()) {
        const QTextCharFormat look = ZELKTextDocument::charFormat(run.attributes, colours);
        cursor.setBlockCharFormat(look);
        cursor.insertText(text.string().mid(start, run.length), look);
        start += run.length;
    }
}

/// Writes a row's cells; of different sizes, they stand on one line.
class TableWriter
{
public:
    TableWriter(QTextCursor cursor, const Rows &rows, const ZELKTextColours &colours)
        : m_rows(rows)
        , m_colours(colours)
        , m_hasFigures(std::any_of(rows.begin(), rows.end(),
                                   [](const Row &row) { return !row.value.figure.isEmpty(); }))
        , m_table(cursor.insertTable(int(rows.size()), m_hasFigures ? 3 : 2))
    {
        QTextTableFormat format;
        format.setBorder(0.0);
        format.setCellSpacing(0.0);
        format.setCellPadding(0.0);
        format.setWidth(QTextLength(QTextLength::PercentageLength, 100.0));
        format.setColumnWidthConstraints(widths());
        m_table->setFormat(format);
    }
    void write()
    {
        for (int row = 0; row < int(m_rows.size()); ++row)
            writeRow(row, m_rows[std::size_t(row)]);
    }

private:
    /// A short value among figures, such as a length of time, stands as they do.
    ZELKAttributedString figureOf(const Row &row) const
    {
        const bool isShort = row.value.isPlain && row.value.text.length() <= longestFigure;
        return m_hasFigures && isShort ? row.value.text : row.value.figure;
    }
    /// The columns are those of what the rows are called, of figures where there are any, and of the rest.
    QList<QTextLength> widths() const
    {
        QList<QTextLength> widths{QTextLength(QTextLength::PercentageLength, keyPart)};
        double widest = 0.0;
        for (const Row &row : m_rows)
            widest = std::max(widest, widthOf(figureOf(row)));
        if (m_hasFigures)
            widths.append(QTextLength(QTextLength::FixedLength, std::ceil(widest) + 2.0 * cellPadding + 2.0));
        widths.append(QTextLength(QTextLength::VariableLength, 0.0));
        return widths;
    }
    void writeRow(int row, const Row &content) const
    {
        const ZELKAttributedString figure = figureOf(content);
        const bool isAllFigure = m_hasFigures && !figure.isEmpty() && content.value.figure.isEmpty();
        const ZELKAttributedString rest = isAllFigure ? ZELKAttributedString() : content.value.text;
        const double ascent = std::max({ascentOf(content.key.text), ascentOf(figure), ascentOf(rest)});
        writeCell(row, 0, content.key.text, Qt::AlignRight, ascent);
        if (m_hasFigures)
            writeCell(row, 1, figure, Qt::AlignRight, ascent);
        writeCell(row, m_table->columns() - 1, rest, Qt::AlignLeft, ascent);
    }
    /// What looks a cell has stands with its first characters, and so its padding comes last.
    void writeCell(int row, int column, const ZELKAttributedString &text, Qt::Alignment alignment,
                   double ascent) const
    {
        QTextTableCell cell = m_table->cellAt(row, column);
        QTextBlockFormat lines;
        lines.setAlignment(alignment);
        insert(cell.firstCursorPosition(), text, m_colours, lines);
        QTextTableCellFormat format = cell.format().toTableCellFormat();
        format.setPadding(cellPadding);
        if (text.isEmpty())
            format.setFont(ZELKTextDocument::font(ZELKLWCPresentationAssistant::miniSecondaryAttributes()));
        else
            format.setTopPadding(cellPadding + ascent - ascentOf(text));
        cell.setFormat(format);
    }

    const Rows &m_rows;
    const ZELKTextColours &m_colours;
    bool m_hasFigures;
    QTextTable *m_table;
};

void insertList(QTextCursor cursor, const Rows &rows, const ZELKTextColours &colours)
{
    QTextBlockFormat format;
    format.setTopMargin(cellPadding);
    format.setBottomMargin(cellPadding);
    format.setLeftMargin(hangingIndent);
    format.setTextIndent(-hangingIndent);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i > 0)
            cursor.insertBlock();
        insert(cursor, rows[i].value.text, colours, format);
        cursor.movePosition(QTextCursor::End);
    }
}

ZELKInspectorCell countOfRest(int rest)
{
    const QString text = ZELKInterfaceLoader::text(QStringLiteral("ZELKLWCInspectorController"),
                                                   QStringLiteral("and %@ more"));
    return {{},
            ZELKAttributedString(ZELKFormat(text, {ZELKEnvironment::current().locale.toString(rest)}),
                                 ZELKLWCPresentationAssistant::miniSecondaryAttributes()),
            true};
}

} // namespace

void ZELKInspectorTableView::fill(QTextDocument &document) const
{
    document.clear();
    document.setUndoRedoEnabled(false);
    if (!m_source || m_columns.isEmpty())
        return;
    const int count = m_source->numberOfRowsInTableView();
    const int shown = std::min(count, mostRows);
    Rows rows;
    for (int row = 0; row < shown; ++row) {
        const auto value = [&](const QString &column) {
            return m_source->tableViewObjectValueForTableColumn(column, row);
        };
        rows.push_back({ZELKInspectorCell::ofKey(value(m_columns.first())),
                        ZELKInspectorCell::ofValue(value(m_columns.last()))});
    }
    if (shown < count)
        rows.push_back({{}, countOfRest(count - shown)});
    const ZELKTextColours colours = ZELKTextColours::fromPalette(palette());
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    if (m_columns.size() == 1)
        insertList(cursor, rows, colours);
    else if (!rows.empty())
        TableWriter(cursor, rows, colours).write();
    cursor.endEditBlock();
}
