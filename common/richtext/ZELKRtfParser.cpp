#include "ZELKRtfParser.h"

#include "ZELKRtfWords.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

using Kind = ZELKRtfToken::Kind;
using Code = ZELKRtfError::Code;
using Destination = ZELKRtfGroup::Destination;

/// Halves of surrogate pairs that lost each other stand for nothing.
void replaceLoneSurrogates(QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
}

void applyLineSpacing(const ZELKRtfGroup &group, ZELKParagraphStyle &style)
{
    using LineSpacing = ZELKParagraphStyle::LineSpacing;
    constexpr double twipsInPoint = 20.0;
    constexpr double unitsInLine = 240.0;
    constexpr int most = 113386;
    const int spacing = std::clamp(group.lineSpacing, -most, most);
    if (spacing == 0)
        return;
    if (group.spacingIsFactor)
        style.lineSpacingKind = LineSpacing::Multiple;
    else
        style.lineSpacingKind = spacing > 0 ? LineSpacing::AtLeast : LineSpacing::Exactly;
    style.lineSpacing = std::abs(spacing) / (group.spacingIsFactor ? unitsInLine : twipsInPoint);
}

} // namespace

ZELKRtfReader::Result ZELKRtfParser::parse()
{
    if (!takeStart())
        return {std::nullopt, m_error};
    bool goesOn = true;
    while (goesOn) {
        m_tokenStart = m_scanner.offset();
        goesOn = takeToken(m_scanner.next());
    }
    if (m_error && m_error->code() == Code::TooDeep)
        return {std::nullopt, m_error};
    flush();
    m_text.append(m_paragraph);
    return {m_text, m_error};
}

bool ZELKRtfParser::takeStart()
{
    const bool isGroup = m_scanner.next().kind == Kind::GroupStart;
    const Token word = m_scanner.next();
    if (!isGroup || word.kind != Kind::Word || word.bytes != "rtf")
        fail(Code::NotRichText);
    m_groups.emplace_back();
    return !m_error;
}

void ZELKRtfParser::fail(Code code)
{
    if (!m_error)
        m_error.emplace(code, m_tokenStart);
}

bool ZELKRtfParser::takeToken(const Token &original)
{
    Token token = original;
    if (isFallback(token))
        return true;
    const bool wasFresh = m_isGroupFresh;
    switch (token.kind) {
    case Kind::GroupStart:
        return openGroup();
    case Kind::GroupEnd:
        return closeGroup();
    case Kind::Word:
        m_isGroupFresh = false;
        if (!wasFresh || !takeDestination(token.bytes))
            takeWord(token);
        return true;
    case Kind::Symbol:
        takeSymbol(token.symbol);
        return true;
    case Kind::Byte:
    case Kind::Text:
        m_isGroupFresh = false;
        addBytes(token.kind == Kind::Byte ? QByteArrayView(&token.symbol, 1) : token.bytes);
        return true;
    case Kind::Binary:
        return true;
    case Kind::MalformedByte:
        fail(Code::MalformedByte);
        return true;
    case Kind::End:
    case Kind::Truncated:
        fail(Code::Truncated);
        return false;
    }
    return false;
}

bool ZELKRtfParser::isFallback(Token &token)
{
    if (m_fallbackLeft == 0)
        return false;
    switch (token.kind) {
    case Kind::Text: {
        const int passed = int(std::min<qsizetype>(m_fallbackLeft, token.bytes.size()));
        m_fallbackLeft -= passed;
        token.bytes = token.bytes.sliced(passed);
        return token.bytes.isEmpty();
    }
    case Kind::Word:
    case Kind::Symbol:
    case Kind::Byte:
    case Kind::MalformedByte:
    case Kind::Binary:
        --m_fallbackLeft;
        return true;
    default: // no fallback reaches beyond its group
        m_fallbackLeft = 0;
        return false;
    }
}

// MARK: groups

bool ZELKRtfParser::openGroup()
{
    if (m_groups.size() >= std::size_t(ZELKRtfReader::deepestGroup)) {
        fail(Code::TooDeep);
        return false;
    }
    flush();
    m_groups.push_back(group());
    m_isGroupFresh = true;
    return true;
}

bool ZELKRtfParser::closeGroup()
{
    m_isGroupFresh = false;
    flush();
    if (m_groups.size() > 1) {
        m_groups.pop_back();
        return true;
    }
    m_tokenStart = m_scanner.offset();
    if (!m_scanner.isAtEnd() && m_scanner.next().kind == Kind::GroupEnd)
        fail(Code::Unbalanced);
    return false;
}

bool ZELKRtfParser::takeDestination(QByteArrayView word)
{
    if (word == "fonttbl")
        group().destination = Destination::Fonts;
    else if (word == "colortbl")
        group().destination = Destination::Colours;
    else if (ZELKRtfWords::isSkippedDestination(word))
        group().destination = Destination::Skipped;
    else
        return false;
    if (m_groups[m_groups.size() - 2].destination != Destination::Body)
        group().destination = Destination::Skipped; // nothing of the kind belongs there
    return true;
}

// MARK: words

void ZELKRtfParser::takeWord(const Token &word)
{
    if (word.bytes == "u") {
        takeUnicode(word.parameter.value_or(0));
        return;
    }
    if (const auto change = ZELKRtfWords::change(word.bytes)) {
        // In the table of fonts \f numbers the one that follows.
        if (group().destination != Destination::Fonts || word.bytes != "f") {
            flush();
            change(group(), word.parameter);
            return;
        }
    }
    if (group().destination == Destination::Fonts)
        m_fonts.take(word, m_codePage);
    else if (group().destination == Destination::Colours)
        m_colours.take(word);
    else if (const char16_t character = ZELKRtfWords::character(word.bytes))
        addCharacter(character);
    else
        takeDocumentWord(word);
}

bool ZELKRtfParser::takeDocumentWord(const Token &word)
{
    constexpr int macintosh = 10000;
    if (word.bytes == "ansicpg")
        m_codePage = word.parameter.value_or(ZELKCodePage::western);
    else if (word.bytes == "mac")
        m_codePage = macintosh;
    else if (word.bytes == "pc")
        m_codePage = 437;
    else if (word.bytes == "pca")
        m_codePage = 850;
    else if (word.bytes == "deff")
        m_defaultFont = word.parameter.value_or(0);
    else
        return false;
    return true;
}

void ZELKRtfParser::takeSymbol(char symbol)
{
    if (symbol == '*') {
        // What one may pass over we pass over, as none of it is text.
        if (std::exchange(m_isGroupFresh, false))
            group().destination = Destination::Skipped;
    } else if (const char16_t character = ZELKRtfWords::characterOfSymbol(symbol)) {
        m_isGroupFresh = false;
        addCharacter(character);
    }
}

void ZELKRtfParser::takeUnicode(int number)
{
    const auto character = char16_t(number); // numbers above 32767 are written as negative ones
    if (group().destination == Destination::Fonts)
        m_fonts.take(character, m_codePage);
    else
        addCharacter(character);
    m_fallbackLeft = group().fallbackLength;
}

// MARK: text

void ZELKRtfParser::addBytes(QByteArrayView bytes)
{
    switch (group().destination) {
    case Destination::Body:
        if (!group().isHidden)
            m_bytes.append(bytes);
        break;
    case Destination::Fonts:
        m_fonts.take({Kind::Text, bytes, {}, 0}, m_codePage);
        break;
    case Destination::Colours:
        m_colours.take({Kind::Text, bytes, {}, 0});
        break;
    case Destination::Skipped:
        break;
    }
}

void ZELKRtfParser::addCharacter(char16_t character)
{
    if (group().destination != Destination::Body || group().isHidden)
        return;
    decodeBytes();
    m_pending += QChar(character);
    if (character == u'\n')
        endParagraph();
}

void ZELKRtfParser::decodeBytes()
{
    if (m_bytes.isEmpty())
        return;
    m_pending += m_codePages.decode(m_bytes, codePage());
    m_bytes.clear();
}

void ZELKRtfParser::flush()
{
    decodeBytes();
    if (m_pending.isEmpty())
        return;
    replaceLoneSurrogates(m_pending);
    m_paragraph.append(m_pending, attributes());
    m_pending.clear();
}

/// What holds at its end holds for the whole paragraph.
void ZELKRtfParser::endParagraph()
{
    flush();
    const ZELKParagraphStyle style = attributes().paragraph;
    m_paragraph.changeAttributes([&style](ZELKTextAttributes &one) { one.paragraph = style; });
    m_text.append(m_paragraph);
    m_paragraph = {};
}

int ZELKRtfParser::fontNumber() const
{
    const int number = m_groups.back().font;
    return number == ZELKRtfGroup::defaultFont ? m_defaultFont : number;
}

int ZELKRtfParser::codePage() const
{
    const int codePage = m_fonts.font(fontNumber()).codePage;
    return codePage > 0 ? codePage : m_codePage;
}

ZELKTextAttributes ZELKRtfParser::attributes() const
{
    const ZELKRtfGroup &group = m_groups.back();
    ZELKTextAttributes attributes = group.attributes;
    attributes.family = m_fonts.font(fontNumber()).family;
    attributes.colour = m_colours.colour(group.colour);
    applyLineSpacing(group, attributes.paragraph);
    return attributes;
}
