#include "ZELKInspectorCell.h"

#include "ZELKCharacters.h"
#include "ZELKLWCPresentationAssistant.h"
#include "ZELKShortDate.h"
#include "ZELKValue.h"

#include <QRegularExpression>

namespace {

constexpr qsizetype longest = 4000;

QString described(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<ZELKDate>())
        return ZELKShortDate::text(value.value<ZELKDate>());
    return ZELKValue::description(value);
}

/// Marks that embed, override or isolate a direction, and control characters.
bool isHarmful(QChar character)
{
    return ZELKCharacters::turnsDirection(character) ||
           (ZELKCharacters::isControl(character) && character != QLatin1Char('\n'));
}

QString bounded(const QString &text)
{
    QString safe = text.first(std::min(text.size(), longest));
    for (QChar &character : safe)
        if (isHarmful(character))
            character = QLatin1Char(' ');
    if (safe.size() < text.size())
        safe.append(QChar(0x2026));
    return safe;
}

qsizetype lengthOfFigure(const QString &text)
{
    static const QRegularExpression percentage(QStringLiteral(R"(\A\s*[-+]?[0-9][0-9.,]*%)"));
    return percentage.match(text).capturedLength();
}

} // namespace

ZELKInspectorCell ZELKInspectorCell::ofValue(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<ZELKAttributedString>())
        return {{},
                ZELKAttributedString(bounded(described(value)),
                                     ZELKLWCPresentationAssistant::miniPrimaryAttributes()),
                true};
    const auto whole = value.value<ZELKAttributedString>().substring(0, longest);
    const qsizetype figure = lengthOfFigure(whole.string());
    qsizetype rest = figure;
    while (rest < whole.length() && whole.string().at(rest).isSpace())
        ++rest;
    return {whole.substring(0, figure), whole.substring(rest, whole.length() - rest), false};
}

ZELKInspectorCell ZELKInspectorCell::ofKey(const QVariant &key)
{
    ZELKInspectorCell cell = ofValue(key);
    cell.text.changeAttributes([](ZELKTextAttributes &attributes) {
        attributes.colour = ZELKTextColour::of(ZELKTextColour::Role::DisabledControlText);
    });
    return cell;
}
