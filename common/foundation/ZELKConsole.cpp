#include "ZELKConsole.h"

#include <QDebug>

namespace {

constexpr qsizetype longestText = 4000;

bool breaksLine(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar(QChar::LineSeparator) ||
           character == QChar(QChar::ParagraphSeparator);
}

QString cut(const QString &text)
{
    if (text.size() <= longestText)
        return text;
    const bool splitsPair = text.at(longestText - 1).isHighSurrogate();
    return text.left(splitsPair ? longestText - 1 : longestText) + QChar(0x2026);
}

} // namespace

void ZELKConsole::log(const QString &text)
{
    QString line;
    for (const QChar character : cut(text))
        line += breaksLine(character) ? escaped(character) : QString(character);
    qInfo().noquote() << line;
}

QString ZELKConsole::escaped(QChar character)
{
    switch (character.unicode()) {
    case u'\n':
        return QStringLiteral("\\n");
    case u'\r':
        return QStringLiteral("\\r");
    case u'\t':
        return QStringLiteral("\\t");
    default:
        return QString::asprintf("\\u%04x", unsigned(character.unicode()));
    }
}
