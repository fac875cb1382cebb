#include "ZELKUPowerLevels.h"

#include <QFile>
#include <QHash>

namespace {

QHash<QString, QString> valuesIn(const QString &path)
{
    constexpr qint64 longest = 100000;
    QHash<QString, QString> values;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return values;
    bool ours = false;
    for (const QString &raw : QString::fromUtf8(file.read(longest)).split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (line.startsWith(QLatin1Char('[')))
            ours = line == QLatin1String("[UPower]");
        else if (ours && !line.startsWith(QLatin1Char('#')) && line.contains(QLatin1Char('=')))
            values.insert(line.section(QLatin1Char('='), 0, 0).trimmed(),
                          line.section(QLatin1Char('='), 1).trimmed());
    }
    return values;
}

std::optional<double> numberOf(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

} // namespace

ZELKUPowerLevels ZELKUPowerLevels::read(const QString &file)
{
    const QHash<QString, QString> values = valuesIn(file);
    if (values.value(QStringLiteral("UsePercentageForPolicy")) == QLatin1String("false"))
        return {};
    ZELKUPowerLevels levels;
    levels.lowPercent = numberOf(values.value(QStringLiteral("PercentageLow")));
    if (values.value(QStringLiteral("CriticalPowerAction")) != QLatin1String("Ignore"))
        levels.actionPercent = numberOf(values.value(QStringLiteral("PercentageAction")));
    return levels;
}
