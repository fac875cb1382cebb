#include "ZELKRtfFontTable.h"

#include <utility>

using Kind = ZELKRtfToken::Kind;

void ZELKRtfFontTable::take(const ZELKRtfToken &token, int documentCodePage)
{
    if (token.kind == Kind::Text) {
        takeText(token.bytes, documentCodePage);
    } else if (token.kind == Kind::Word) {
        takeNameBytes(documentCodePage);
        if (token.bytes == "f")
            m_number = token.parameter.value_or(0);
        else if (token.bytes == "fcharset")
            m_current.codePage = ZELKCodePage::ofCharacterSet(token.parameter.value_or(0));
        else if (token.bytes == "cpg")
            m_current.codePage = token.parameter.value_or(0);
    }
}

void ZELKRtfFontTable::take(char16_t character, int documentCodePage)
{
    takeNameBytes(documentCodePage);
    m_current.family += QChar(character);
}

void ZELKRtfFontTable::takeText(QByteArrayView bytes, int documentCodePage)
{
    for (const char byte : bytes)
        if (byte == ';')
            finish(documentCodePage);
        else
            m_nameBytes += byte;
}

void ZELKRtfFontTable::takeNameBytes(int documentCodePage)
{
    const int codePage = m_current.codePage > 0 ? m_current.codePage : documentCodePage;
    m_current.family += m_codePages.decode(m_nameBytes, codePage);
    m_nameBytes.clear();
}

void ZELKRtfFontTable::finish(int documentCodePage)
{
    takeNameBytes(documentCodePage);
    m_current.family = m_current.family.trimmed();
    m_fonts.insert(m_number, std::exchange(m_current, {}));
}
