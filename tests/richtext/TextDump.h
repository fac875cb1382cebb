#pragma once

#include "ZELKAttributedString.h"

#include <QStringList>

/// An attributed text as one line: "<look>" before each run. Of a look what is not usual in rich text files:
/// "<Arial 10 b centre li36>". Ends of paragraphs are "¶", tabs "→".
namespace TextDump {

inline void addParagraph(QStringList &words, const ZELKParagraphStyle &style)
{
    const auto length = [&words](const char *name, double value) {
        if (value != 0.0)
            words.append(QLatin1String(name) + QString::number(value));
    };
    words.append(QStringList{{},
                             QStringLiteral("left"),
                             QStringLiteral("centre"),
                             QStringLiteral("right"),
                             QStringLiteral("justified")}
                     .at(int(style.alignment)));
    length("li", style.leftIndent);
    length("fi", style.firstLineIndent);
    length("ri", style.rightIndent);
    length("sb", style.spacingBefore);
    length("sa", style.spacingAfter);
    constexpr const char *spacings[] = {"natural", "x", "least", "exactly"};
    length(spacings[int(style.lineSpacingKind)], style.lineSpacing);
    constexpr const char *tabs[] = {"t", "tc", "tr", "td"};
    for (const ZELKTabStop &stop : style.tabStops)
        length(tabs[int(stop.kind)], stop.position);
}

inline QString look(const ZELKTextAttributes &attributes)
{
    QStringList words{attributes.family};
    if (attributes.pointSize != 12.0)
        words.append(QString::number(attributes.pointSize));
    for (const auto &[isSet, name] : {std::pair(attributes.bold, "b"), std::pair(attributes.italic, "i"),
                                      std::pair(attributes.underline, "u")})
        words.append(QLatin1String(isSet ? name : ""));
    constexpr const char *roles[] = {"", "text", "dim", "#"};
    const ZELKTextColour colour = attributes.colour;
    words.append(QLatin1String(roles[int(colour.role)]) +
                 (colour.fixed ? QString::number(colour.fixed & 0xFFFFFF, 16) : QString()));
    addParagraph(words, attributes.paragraph);
    words.removeAll(QString());
    return words.join(QLatin1Char(' '));
}

inline QString of(const ZELKAttributedString &text)
{
    QString dump;
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : text.runs()) {
        dump +=
            QLatin1Char('<') + look(run.attributes) + QLatin1Char('>') + text.string().mid(start, run.length);
        start += run.length;
    }
    return dump.replace(QLatin1Char('\n'), QChar(0xB6)).replace(QLatin1Char('\t'), QChar(0x2192));
}

} // namespace TextDump
