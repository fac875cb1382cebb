#include "ZELKUPowerFolder.h"

#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKKernelAttributes.h"
#include "ZELKKernelPowerSupplies.h"
#include "ZELKPowerSourceNames.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace {

constexpr QLatin1String prefix("history-charge-");
constexpr QLatin1String suffix(".dat");

/// What UPower makes of a text in a file's name; texts of one or two characters it leaves out.
QString nameInFiles(QString text)
{
    constexpr qsizetype shortest = 3;
    if (text.size() < shortest)
        return {};
    static const QRegularExpression unfit(QStringLiteral("[\\\\\t\"?' /,.]"));
    return text.replace(unfit, QStringLiteral("_"));
}

/// "MODEL-DESIGN-SERIAL", "MODEL-DESIGN" and so on, with the design's whole watt-hours: three digits at most.
/// Mice and keyboards are "VENDOR-MODEL-SERIAL"; wireless ones have serials like "4069-5b-3d-fc-12".
QRegularExpressionMatch parts(const QString &battery)
{
    static const QRegularExpression wireless(QStringLiteral("-[0-9a-f]{4}(?:-[0-9a-f]{2}){4}$"));
    if (wireless.match(battery).hasMatch())
        return {};
    static const QRegularExpression whole(QStringLiteral("^(?:(.+)-)?(\\d{1,3})-(.+)$"));
    static const QRegularExpression unnumbered(QStringLiteral("^(?:(.+)-)?(\\d{1,3})$"));
    const QRegularExpressionMatch match = whole.match(battery);
    return match.hasMatch() ? match : unnumbered.match(battery);
}

} // namespace

bool ZELKUPowerFolder::Known::isBattery(const QString &battery) const
{
    QStringList pattern;
    if (const QString text = nameInFiles(model); !text.isEmpty())
        pattern.append(QRegularExpression::escape(text));
    pattern.append(QStringLiteral("\\d{1,3}"));
    if (const QString text = nameInFiles(serial); !text.isEmpty())
        pattern.append(QRegularExpression::escape(text));
    return QRegularExpression(QLatin1Char('^') + pattern.join(QLatin1Char('-')) + QLatin1Char('$'))
        .match(battery)
        .hasMatch();
}

ZELKUPowerFolder::ZELKUPowerFolder(const QString &path, const QString &powerSupply,
                                   ZELKPowerSourceNameMemory *names)
    : m_path(path)
{
    const auto given = names ? names->recall() : ZELKPowerSourceNameMemory::Names();
    ZELKPowerSourceNames giver(names);
    for (const ZELKPowerSupply &supply : ZELKKernelPowerSupplies::read(powerSupply)) {
        if (!supply.isPresent)
            continue;
        // The daemon may spell a model with other blanks than the kernel does; that is no other battery.
        const auto before = given.find(supply.device);
        const bool isNamed =
            before != given.end() && nameInFiles(before->second.model) == nameInFiles(supply.plainName());
        m_known.push_back({supply.model, ZELKKernelAttributes(supply.path).text("serial_number"),
                           isNamed ? before->second.name : giver.nameFor(supply, false)});
    }
}

QStringList ZELKUPowerFolder::batteries() const
{
    QStringList batteries;
    if (!QFileInfo(m_path).isReadable())
        ZELKConsole::log(ZELKFormat("No history of UPower's to read at %@.", {m_path}));
    for (const QString &name :
         QDir(m_path).entryList({prefix + QLatin1Char('*') + suffix}, QDir::Files, QDir::Name)) {
        const QString battery = name.mid(prefix.size()).chopped(suffix.size());
        if (parts(battery).hasMatch())
            batteries.append(battery);
    }
    return batteries;
}

QString ZELKUPowerFolder::nameOf(const QString &battery) const
{
    for (const Known &known : m_known)
        if (known.isBattery(battery))
            return known.name;
    const QString model = parts(battery).captured(1);
    return model.isEmpty() ? battery : model;
}

std::vector<ZELKUPowerReading> ZELKUPowerFolder::readings(const QString &battery) const
{
    const ZELKUPowerHistory history{file("charge", battery), file("rate", battery),
                                    file("time-empty", battery), file("time-full", battery)};
    std::size_t garbage = 0;
    std::vector<ZELKUPowerReading> readings = history.readings(garbage);
    if (garbage > 0)
        ZELKConsole::log(ZELKFormat("Skipped %lu lines that can not be read in the history of '%@' in %@.",
                                    {garbage, battery, m_path}));
    return readings;
}

QByteArray ZELKUPowerFolder::file(const char *kind, const QString &battery) const
{
    QFile file(QStringLiteral("%1/history-%2-%3.dat").arg(m_path, QString::fromLatin1(kind), battery));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (file.size() <= longestFile)
        return file.read(longestFile);
    file.seek(file.size() - longestFile);
    const QByteArray end = file.read(longestFile);
    return end.mid(end.indexOf('\n') + 1); // half a line may be read as another
}
