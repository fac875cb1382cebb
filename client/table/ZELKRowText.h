#pragma once

#include "ZELKAttributedString.h"
#include "ZELKRowRange.h"

class QMimeData;
class ZELKLWCLogTableModel;

/// Rows as a text for elsewhere.
namespace ZELKRowText {

/// The cells as their formatters have them, rows in the order given: a tab between columns, a line feed
/// between rows, none behind the last.
ZELKAttributedString text(const ZELKLWCLogTableModel &model, const ZELKRowRanges &rows);

/// Rich text under both of its names, and the plain text as a table and as text.
void write(const ZELKAttributedString &text, QMimeData &pasteboard);

} // namespace ZELKRowText
