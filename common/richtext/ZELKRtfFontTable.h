#pragma once

#include "ZELKCodePage.h"
#include "ZELKRtfScanner.h"

#include <QByteArray>
#include <QHash>
#include <QString>

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
