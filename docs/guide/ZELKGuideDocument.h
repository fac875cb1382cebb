#pragma once

#include "ZELKGuidePages.h"

#include <QImage>
#include <QMap>
#include <QString>
#include <QTextDocument>

class QPainter;

/// The guide as pages: its text with the pictures in their places, a table of contents with page numbers, and
/// a number at the foot of each page.
///
/// The text is HTML as QTextDocument knows it. "<img src="NAME">" is a picture, "<p>CONTENTS</p>" the place
/// of the table of contents, which names every heading of the second level.
class ZELKGuideDocument
{
public:
    ZELKGuideDocument(const QString &html, const QMap<QString, QImage> &pictures);

    /// As PDF, A4; false when it cannot be written.
    bool write(const QString &path);

private:
    void layOut(const QString &html);
    QStringList contents() const;
    void drawPage(QPainter &painter, int page) const;

    QString m_html;
    QMap<QString, QImage> m_pictures;
    QImage m_ruler{1, 1, QImage::Format_RGB32}; // says how large a point is, whatever the screen has
    QTextDocument m_document;
    ZELKGuidePages m_pages;
};
