#include "ZELKInspectorTextView.h"

#include "ZELKAssertion.h"
#include "ZELKTextDocument.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTextBlock>
#include <QTextTable>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr int usualWidthInCharacters = 44;
constexpr int widestInCharacters = 60;

/// What is selected, a rectangle of cells or a stretch of text, block by block.
class Selected
{
public:
    explicit Selected(const QTextCursor &cursor)
        : m_cursor(cursor)
        , m_table(cursor.currentTable())
    {
        if (m_table && cursor.hasComplexSelection())
            cursor.selectedTableCells(&m_row, &m_rows, &m_column, &m_columns);
    }
    QString text()
    {
        const QTextDocument &document = *m_cursor.document();
        for (QTextBlock block = document.findBlock(m_cursor.selectionStart());
             block.isValid() && block.position() <= m_cursor.selectionEnd(); block = block.next())
            add(block);
        return m_text;
    }

private:
    void add(const QTextBlock &block)
    {
        const QTextTable *table = QTextCursor(block).currentTable();
        const QTextTableCell cell = table ? table->cellAt(block.position()) : QTextTableCell();
        QString part = block.text();
        if (m_rows > 0) {
            if (!cell.isValid() || cell.row() < m_row || cell.row() >= m_row + m_rows ||
                cell.column() < m_column || cell.column() >= m_column + m_columns)
                return;
        } else {
            const int from = std::max(0, m_cursor.selectionStart() - block.position());
            const int to = m_cursor.selectionEnd() - block.position();
            part = part.mid(from, std::max(0, to - from));
        }
        if (part.isEmpty())
            return; // around a table, and in a row's cell without anything
        const int row = cell.isValid() ? cell.row() : -1;
        if (!m_text.isEmpty())
            m_text += row >= 0 && row == m_lastRow ? QLatin1Char('\t') : QLatin1Char('\n');
        m_text += part.trimmed();
        m_lastRow = row;
    }

    const QTextCursor &m_cursor;
    const QTextTable *m_table;
    int m_row = 0;
    int m_rows = 0;
    int m_column = 0;
    int m_columns = 0;
    int m_lastRow = -1;
    QString m_text;
};

} // namespace

ZELKInspectorTextView::ZELKInspectorTextView(QWidget *parent)
    : QTextEdit(parent)
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document()->setDocumentMargin(0.0);
    connect(this, &QTextEdit::cursorPositionChanged, this, [this] {
        zelkGuard([this] {
            if (hasFocus())
                Q_EMIT caretMoved(cursorRect());
        });
    });
}

void ZELKInspectorTextView::setAttributedText(const ZELKAttributedString &text)
{
    m_text = text;
    refill();
}

void ZELKInspectorTextView::setMostLines(int lines)
{
    m_mostLines = lines;
    setVerticalScrollBarPolicy(lines > 0 ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    updateGeometry();
}

void ZELKInspectorTextView::fill(QTextDocument &document) const
{
    ZELKTextDocument::fill(document, m_text, ZELKTextColours::fromPalette(palette()));
}

/// The user's keys begin at the beginning.
void ZELKInspectorTextView::refill()
{
    fill(*document());
    const QList<QTextFrame *> tables = document()->rootFrame()->childFrames();
    setTextCursor(tables.isEmpty() ? QTextCursor(document()) : tables.constFirst()->firstCursorPosition());
    updateGeometry();
}

// MARK: size

int ZELKInspectorTextView::heightForWidth(int width) const
{
    document()->setTextWidth(width);
    const double height = std::ceil(document()->size().height());
    if (m_mostLines <= 0)
        return int(height);
    return int(std::min(height, std::ceil(m_mostLines * QFontMetricsF(font()).lineSpacing())));
}

QSize ZELKInspectorTextView::sizeHint() const
{
    const int character = fontMetrics().averageCharWidth();
    document()->setTextWidth(-1);
    const int width = std::clamp(int(std::ceil(document()->idealWidth())), usualWidthInCharacters * character,
                                 widestInCharacters * character);
    return {width, heightForWidth(width)};
}

// MARK: events

/// The window's menu has these keys too, for its table; here they are the text's.
bool ZELKInspectorTextView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll))
            event->accept();
    }
    return QTextEdit::event(event);
}

void ZELKInspectorTextView::changeEvent(QEvent *event)
{
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        zelkGuard([this] { refill(); });
}

/// What is selected is never dragged: the panel may be made anew while a drag goes on.
void ZELKInspectorTextView::mousePressEvent(QMouseEvent *event)
{
    zelkGuard([&] {
        QTextCursor cursor = textCursor();
        if (event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier)) {
            cursor.clearSelection();
            setTextCursor(cursor);
        }
    });
    QTextEdit::mousePressEvent(event);
}

QMimeData *ZELKInspectorTextView::createMimeDataFromSelection() const
{
    auto pasteboard = std::make_unique<QMimeData>();
    zelkGuard([&] {
        const QTextCursor cursor = textCursor();
        pasteboard->setText(Selected(cursor).text());
    });
    return pasteboard.release();
}
