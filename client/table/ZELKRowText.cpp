#include "ZELKRowText.h"

#include "ZELKFormatter.h"
#include "ZELKLWCLogTableModel.h"
#include "ZELKRtfWriter.h"
#include "ZELKSystemFonts.h"

#include <QFont>
#include <QFontInfo>
#include <QMimeData>

namespace {

using Column = ZELKLWCLogTableModel::Column;

ZELKAttributedString cell(const ZELKLWCLogTableModel &model, int row, Column column)
{
    const QVariant value = ZELKLWCLogTableModel::value(model.entryAtRow(row), column);
    return model.formatter(column)->attributedStringForObjectValue(value);
}

/// A divider in the look of what it follows, so that it begins no other paragraph style of its own.
void appendDivider(ZELKAttributedString &text, QChar divider)
{
    text.append(divider, text.attributesAt(text.length() - 1));
}

/// Whoever gets the text has another font of its own, and no name such as "Sans Serif" for this one.
void nameSystemFont(ZELKAttributedString &text)
{
    const QString system = ZELKSystemFonts::family();
    const QString known = QFontInfo(QFont(system)).family();
    text.changeAttributes([&](ZELKTextAttributes &one) {
        if (one.family.isEmpty() || one.family == system)
            one.family = known;
    });
}

} // namespace

ZELKAttributedString ZELKRowText::text(const ZELKLWCLogTableModel &model, const ZELKRowRanges &rows)
{
    ZELKAttributedString text;
    for (const ZELKRowRange &range : rows) {
        for (int row = range.first; row <= range.last; ++row) {
            if (!text.isEmpty())
                appendDivider(text, QLatin1Char('\n'));
            text.append(cell(model, row, Column::DateColumn));
            appendDivider(text, QLatin1Char('\t'));
            text.append(cell(model, row, Column::SummaryColumn));
        }
    }
    nameSystemFont(text);
    return text;
}

void ZELKRowText::write(const ZELKAttributedString &text, QMimeData &pasteboard)
{
    const QByteArray rich = ZELKRtfWriter::write(text);
    pasteboard.setData(QStringLiteral("text/rtf"), rich);
    pasteboard.setData(QStringLiteral("application/rtf"), rich);
    pasteboard.setData(QStringLiteral("text/tab-separated-values"), text.string().toUtf8());
    pasteboard.setText(text.string());
}
