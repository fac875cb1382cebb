#pragma once

#include <QList>

class QTextDocument;

/// Where the pages of a document that was laid out in one piece begin and end, in its own coordinates.
///
/// QTextDocument divides pages itself, but cuts through rows of tables and shifts pictures out of their
/// lines. Here a page ends only between two pieces: paragraphs, pictures, rows of a table, listings as a
/// whole. A heading stays with what follows it; "page-break-before: always" begins a page.
struct ZELKGuidePages
{
    struct Page
    {
        qreal top;
        qreal bottom;
    };
    QList<Page> pages;

    /// `height` is what a page takes; a piece that is higher has a page of its own, which it exceeds.
    static ZELKGuidePages of(const QTextDocument &document, qreal height);
    /// Counted from 0.
    int pageAt(qreal y) const;
};
