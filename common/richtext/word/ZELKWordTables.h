#pragma once

#include <QByteArray>
#include <QStringList>

#include <array>

/// The second stream of a Word document: tables of styles, fonts, sections, and of where the pieces of text
/// and the pages about its looks stand in the first one.
class ZELKWordTables
{
public:
    /// What there is to be said of the first stream. Places and lengths in bytes.
    struct Contents
    {
        quint32 textStart = 0;
        quint32 unitCount = 0; ///< of the text, in UTF-16 units
        quint32 sectionPlace = 0;
        QByteArray characterIndex;
        QByteArray paragraphIndex;
        QStringList fonts; ///< the first one is that of text without a font
    };

    /// Where a table stands in this stream.
    struct Place
    {
        quint32 start = 0;
        quint32 length = 0;
    };
    /// By number, as the document's header lists them.
    static constexpr int count = 93;
    using Places = std::array<Place, count>;

    explicit ZELKWordTables(const Contents &contents);

    const QByteArray &bytes() const { return m_bytes; }
    const Places &places() const { return m_places; }

private:
    void addStyles();
    void addFonts(const QStringList &fonts);
    void addSection(const Contents &contents);
    void addSettings();
    void addPieces(const Contents &contents);
    void add(int number, const QByteArray &table);

    QByteArray m_bytes;
    Places m_places;
};
