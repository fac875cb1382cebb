#pragma once

#include "ZELKAttributedString.h"

#include <QRandomGenerator>

/// Texts for writers of files, in the looks that files know.
namespace TextSamples {

inline QString withAstral()
{
    return QStringLiteral("Größe\tПривет\tשלום עולם\tمرحبا\n日本語\u2028{next} \\line\n😀 𝒳\ttail");
}

inline ZELKTextAttributes usual()
{
    ZELKTextAttributes look;
    look.family = QStringLiteral("DejaVu Sans");
    look.pointSize = 10.0;
    look.paragraph.alignment = ZELKParagraphStyle::Alignment::Left;
    return look;
}

inline ZELKParagraphStyle randomStyle(QRandomGenerator &random)
{
    ZELKParagraphStyle style;
    style.alignment = ZELKParagraphStyle::Alignment(random.bounded(5));
    style.lineSpacingKind = ZELKParagraphStyle::LineSpacing(random.bounded(4));
    style.lineSpacing = random.bounded(1e5) - 1e4;
    style.leftIndent = random.bounded(1e4) - 5e3;
    style.spacingBefore = random.bounded(100.0) - 50.0;
    for (int stops = random.bounded(4) ? 0 : random.bounded(100); stops > 0; --stops)
        style.tabStops.append({random.bounded(1e4) - 100.0, ZELKTabStop::Kind(random.bounded(4))});
    return style;
}

inline ZELKTextAttributes randomLook(QRandomGenerator &random)
{
    ZELKTextAttributes look;
    look.family =
        QString(random.bounded(3) ? random.bounded(9) : random.bounded(90), QChar(0x100 + random.bounded(4)));
    look.pointSize = random.bounded(2000.0) - 100.0;
    look.bold = random.bounded(2);
    look.italic = random.bounded(2);
    look.underline = random.bounded(2);
    look.colour = {ZELKTextColour::Role(random.bounded(4)), 0};
    if (look.colour.role == ZELKTextColour::Role::Fixed)
        look.colour.fixed = 0xFF000000 | random.generate();
    look.paragraph = randomStyle(random);
    return look;
}

/// Anything between nothing and many paragraphs, of few or many looks.
inline ZELKAttributedString random(quint32 seed)
{
    QRandomGenerator random(seed);
    const QString all = withAstral();
    QList<ZELKTextAttributes> looks(1 + random.bounded(30));
    for (ZELKTextAttributes &look : looks)
        look = randomLook(random);
    ZELKAttributedString text;
    for (int runs = random.bounded(random.bounded(4) ? 20 : 2000); runs > 0; --runs)
        text.append(all.mid(random.bounded(int(all.size())), random.bounded(12)),
                    looks[random.bounded(int(looks.size()))]);
    return text;
}

} // namespace TextSamples
