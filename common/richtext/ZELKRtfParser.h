#pragma once

#include "ZELKRtfColourTable.h"
#include "ZELKRtfFontTable.h"
#include "ZELKRtfGroup.h"
#include "ZELKRtfReader.h"
#include "ZELKRtfScanner.h"

#include <vector>

/// Makes a text of the tokens of rich text; used once.
class ZELKRtfParser
{
public:
    explicit ZELKRtfParser(QByteArrayView bytes)
        : m_scanner(bytes)
    {
    }

    ZELKRtfReader::Result parse();

private:
    using Token = ZELKRtfToken;

    bool takeStart();
    /// False at the end, or where going on makes no sense.
    bool takeToken(const Token &token);
    bool openGroup();
    bool closeGroup();
    void takeWord(const Token &word);
    void takeSymbol(char symbol);
    bool takeDestination(QByteArrayView word);
    bool takeDocumentWord(const Token &word);
    void takeUnicode(int number);
    /// Takes what stands behind \u for other readers; true when the token was all of that.
    bool isFallback(Token &token);

    ZELKRtfGroup &group() { return m_groups.back(); }
    void addBytes(QByteArrayView bytes);
    void addCharacter(char16_t character);
    void decodeBytes();
    void flush();
    void endParagraph();
    int codePage() const;
    int fontNumber() const;
    ZELKTextAttributes attributes() const;
    void fail(ZELKRtfError::Code code);

    ZELKRtfScanner m_scanner;
    qsizetype m_tokenStart = 0;
    std::vector<ZELKRtfGroup> m_groups;
    bool m_isGroupFresh = false;
    int m_fallbackLeft = 0;
    int m_codePage = ZELKCodePage::western;
    int m_defaultFont = 0;
    ZELKCodePage m_codePages;
    ZELKRtfFontTable m_fonts{m_codePages};
    ZELKRtfColourTable m_colours;

    QByteArray m_bytes; ///< not decoded yet
    QString m_pending;  ///< of one look, not in the paragraph yet
    ZELKAttributedString m_paragraph;
    ZELKAttributedString m_text;
    std::optional<ZELKRtfError> m_error; ///< the first
};
