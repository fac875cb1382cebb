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

constexpr double keyPart = 40.0; // of the width, in hundredths
constexpr double cellPadding = 2.0;

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

void insert(QTextCursor cursor, const ZELKAttributedString &text, const ZELKTextColours &colours,
            Qt::Alignment alignment)
{
    QTextBlockFormat format;
    format.setAlignment(alignment);
    cursor.setBlockFormat(format);
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : text.runs()) {
        const QTextCharFormat look = ZELKTextDocument::charFormat(run.attributes, colours);
        cursor.setBlockCharFormat(look);
        cursor.insertText(text.string().mid(start, run.length), look);
        start += run.length;
    }
}

/// The columns are those of what the rows are called, of figures where there are any, and of the rest.
QTextTableFormat formatOf(const Rows &rows, bool hasFigures)
{
    QTextTableFormat format;
    format.setBorder(0.0);
    format.setCellSpacing(0.0);
    format.setCellPadding(cellPadding);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100.0));
    QList<QTextLength> widths{QTextLength(QTextLength::PercentageLength, keyPart)};
    if (hasFigures) {
        double widest = 0.0;
        for (const Row &row : rows)
            widest = std::max(widest, widthOf(row.value.figure));
        widths.append(QTextLength(QTextLength::FixedLength, std::ceil(widest) + 2.0 * cellPadding + 2.0));
    }
    widths.append(QTextLength(QTextLength::VariableLength, 0.0));
    format.setColumnWidthConstraints(widths);
    return format;
}

void insertTable(QTextCursor cursor, const Rows &rows, const ZELKTextColours &colours)
{
    const bool hasFigures =
        std::any_of(rows.begin(), rows.end(), [](const Row &row) { return !row.value.figure.isEmpty(); });
    const int last = hasFigures ? 2 : 1;
    QTextTable *table = cursor.insertTable(int(rows.size()), last + 1, formatOf(rows, hasFigures));
    for (int i = 0; i < int(rows.size()); ++i) {
        const Row &row = rows[std::size_t(i)];
        const bool isFigure = !row.value.figure.isEmpty();
        insert(table->cellAt(i, 0).firstCursorPosition(), row.key.text, colours, Qt::AlignRight);
        if (isFigure)
            insert(table->cellAt(i, 1).firstCursorPosition(), row.value.figure, colours, Qt::AlignRight);
        else if (hasFigures)
            table->mergeCells(i, 1, 1, 2);
        insert(table->cellAt(i, isFigure ? last : 1).firstCursorPosition(), row.value.text, colours,
               Qt::AlignLeft);
    }
}

void insertList(QTextCursor cursor, const Rows &rows, const ZELKTextColours &colours)
{
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i > 0)
            cursor.insertBlock();
        insert(cursor, rows[i].value.text, colours, Qt::AlignLeft);
        cursor.movePosition(QTextCursor::End);
    }
}

ZELKInspectorCell countOfRest(int rest)
{
    const QString text = ZELKInterfaceLoader::text(QStringLiteral("ZELKLWCInspectorController"),
                                                   QStringLiteral("and %@ more"));
    return {{},
            ZELKAttributedString(ZELKFormat(text, {ZELKEnvironment::current().locale.toString(rest)}),
                                 ZELKLWCPresentationAssistant::miniSecondaryAttributes())};
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
        insertTable(cursor, rows, colours);
    cursor.endEditBlock();
}
