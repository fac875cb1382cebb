#include "ZELKRtfBody.h"

#include "ZELKRtfLooks.h"

#include <algorithm>
#include <cmath>

namespace {

using Paragraph = ZELKParagraphStyle;

int twips(double points)
{
    constexpr double most = 5669.3; // two metres
    return int(std::lround(std::clamp(points, -most, most) * 20.0));
}

void appendText(QByteArray &out, QStringView text)
{
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\n':
            out += "\\par\n";
            break;
        case 0x2028:
            out += "\\line ";
            break;
        case u'\t':
            out += "\\tab ";
            break;
        default:
            ZELKRtfLooks::appendEscaped(out, character);
        }
    }
}

const char *alignmentWord(Paragraph::Alignment alignment)
{
    switch (alignment) {
    case Paragraph::Alignment::Left:
        return "\\ql";
    case Paragraph::Alignment::Centre:
        return "\\qc";
    case Paragraph::Alignment::Right:
        return "\\qr";
    case Paragraph::Alignment::Justified:
        return "\\qj";
    case Paragraph::Alignment::Natural:
        break;
    }
    return "";
}

const char *tabWord(ZELKTabStop::Kind kind)
{
    switch (kind) {
    case ZELKTabStop::Kind::Centre:
        return "\\tqc";
    case ZELKTabStop::Kind::Right:
        return "\\tqr";
    case ZELKTabStop::Kind::Decimal:
        return "\\tqdec";
    case ZELKTabStop::Kind::Left:
        break;
    }
    return "";
}

QByteArray lineSpacing(const Paragraph &style)
{
    constexpr double unitsInLine = 240.0;
    switch (style.lineSpacingKind) {
    case Paragraph::LineSpacing::Multiple:
        return ZELKRtfLooks::word("sl",
                                  int(std::lround(std::clamp(style.lineSpacing, 0.0, 472.5) * unitsInLine))) +
               "\\slmult1";
    case Paragraph::LineSpacing::AtLeast:
        return ZELKRtfLooks::word("sl", twips(style.lineSpacing));
    case Paragraph::LineSpacing::Exactly:
        return ZELKRtfLooks::word("sl", -twips(style.lineSpacing));
    case Paragraph::LineSpacing::Natural:
        break;
    }
    return {};
}

QByteArray paragraphWords(const Paragraph &style)
{
    QByteArray out = QByteArray("\\pard") + alignmentWord(style.alignment);
    const std::pair<const char *, double> lengths[] = {{"fi", style.firstLineIndent},
                                                       {"li", style.leftIndent},
                                                       {"ri", style.rightIndent},
                                                       {"sb", style.spacingBefore},
                                                       {"sa", style.spacingAfter}};
    for (const auto &[name, length] : lengths)
        if (twips(length) != 0)
            out += ZELKRtfLooks::word(name, twips(length));
    out += lineSpacing(style);
    for (const ZELKTabStop &stop : style.tabStops)
        out += tabWord(stop.kind) + ZELKRtfLooks::word("tx", twips(stop.position));
    return out + '\n';
}

} // namespace

void ZELKRtfBody::append(QByteArray &out, const ZELKAttributedString &piece)
{
    const QStringView text(piece.string());
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : piece.runs()) {
        const QByteArray opening = '{' + m_looks.words(run.attributes);
        const qsizetype end = start + run.length;
        while (start < end) {
            if (m_startsParagraph && run.attributes.paragraph != m_style) {
                m_style = run.attributes.paragraph;
                out += paragraphWords(m_style);
            }
            const qsizetype lineEnd = text.sliced(start, end - start).indexOf(QLatin1Char('\n'));
            m_startsParagraph = lineEnd >= 0;
            const qsizetype partEnd = m_startsParagraph ? start + lineEnd + 1 : end;
            out += opening;
            appendText(out, text.sliced(start, partEnd - start));
            out += '}';
            start = partEnd;
        }
    }
}
