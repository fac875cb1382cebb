#pragma once

#include "ZELKCodePage.h"
#include "ZELKRtfScanner.h"
#include "ZELKTextAttributes.h"

#include <QByteArray>
#include <QHash>
#include <QList>

/// The fonts that rich text names at its beginning.
class ZELKRtfFontTable
{
public:
    struct Font
    {
        QString family;
        int codePage = 0; ///< 0: the document's
    };

    explicit ZELKRtfFontTable(ZELKCodePage &codePages)
        : m_codePages(codePages)
    {
    }

    /// A token of the table; groups divide nothing that ";" does not.
    void take(const ZELKRtfToken &token, int documentCodePage);
    /// A character written as \u.
    void take(char16_t character, int documentCodePage);
    Font font(int number) const { return m_fonts.value(number); }

private:
    void takeText(QByteArrayView bytes, int documentCodePage);
    void takeNameBytes(int documentCodePage);
    void finish(int documentCodePage);

    ZELKCodePage &m_codePages;
    QHash<int, Font> m_fonts;
    int m_number = 0;
    Font m_current;
    QByteArray m_nameBytes;
};

/// The colours that rich text numbers at its beginning. A colour of the theme's text is the palette's text;
/// tinted, it is the dimmer one.
class ZELKRtfColourTable
{
public:
    void take(const ZELKRtfToken &token);
    /// No colour of its own for numbers that are not there.
    ZELKTextColour colour(int number) const;

private:
    void finish();

    QList<ZELKTextColour> m_colours;
    int m_red = -1; ///< -1 while none is given
    int m_green = -1;
    int m_blue = -1;
    bool m_isText = false;
    bool m_isTinted = false;
};
