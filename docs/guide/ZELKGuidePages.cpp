#include "ZELKGuidePages.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

namespace {

struct Piece
{
    QRectF place;
    bool beginsPage = false;
    bool staysWithNext = false;
};

class Pieces
{
public:
    explicit Pieces(const QTextDocument &document)
        : m_layout(*document.documentLayout())
    {
        for (auto place = document.rootFrame()->begin(); !place.atEnd(); ++place) {
            if (const auto *table = qobject_cast<const QTextTable *>(place.currentFrame()))
                addRows(*table);
            else if (place.currentBlock().isValid())
                addBlock(place.currentBlock());
        }
    }
    const QList<Piece> &all() const { return m_pieces; }

private:
    void addRows(const QTextTable &table)
    {
        m_isListing = false;
        for (int row = 0; row < table.rows(); ++row) {
            Piece piece;
            for (int column = 0; column < table.columns(); ++column) {
                const QTextTableCell cell = table.cellAt(row, column);
                for (auto place = cell.begin(); !place.atEnd(); ++place)
                    piece.place |= m_layout.blockBoundingRect(place.currentBlock());
            }
            m_pieces.append(piece);
        }
    }
    void addBlock(const QTextBlock &block)
    {
        const QTextBlockFormat format = block.blockFormat();
        const QRectF place = m_layout.blockBoundingRect(block);
        const bool isListing = format.nonBreakableLines();
        if (isListing && m_isListing)
            m_pieces.last().place |= place;
        else
            m_pieces.append({place, format.pageBreakPolicy().testFlag(QTextFormat::PageBreak_AlwaysBefore),
                             format.headingLevel() > 0});
        m_isListing = isListing;
    }

    const QAbstractTextDocumentLayout &m_layout;
    QList<Piece> m_pieces;
    bool m_isListing = false;
};

} // namespace

ZELKGuidePages ZELKGuidePages::of(const QTextDocument &document, qreal height)
{
    const Pieces pieces(document);
    ZELKGuidePages result;
    QList<Page> &pages = result.pages;
    for (qsizetype i = 0; i < pieces.all().size(); ++i) {
        const QRectF &place = pieces.all()[i].place;
        qsizetype last = i; // what must stand on the same page
        while (pieces.all()[last].staysWithNext && last + 1 < pieces.all().size())
            ++last;
        if (pages.isEmpty() || pieces.all()[i].beginsPage ||
            pieces.all()[last].place.bottom() - pages.last().top > height)
            pages.append({place.top(), place.bottom()});
        pages.last().bottom = std::max(pages.last().bottom, place.bottom());
    }
    return result;
}

int ZELKGuidePages::pageAt(qreal y) const
{
    int page = 0;
    while (page + 1 < pages.size() && pages[page + 1].top <= y)
        ++page;
    return page;
}
