#include "ZELKPowerSupply.h"

#include "ZELKEventVocabulary.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

/// Longer estimates come from a current that is as good as none.
constexpr double mostMinutes = 7.0 * 24.0 * 60.0;

/// The attributes of one supply.
class Attributes
{
public:
    explicit Attributes(const QString &folder)
        : m_folder(folder)
    {
    }

    /// One line of printable text; empty when it is not given.
    QString text(const char *name) const
    {
        constexpr qint64 longest = 256;
        QFile file(m_folder + QLatin1Char('/') + QString::fromLatin1(name));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return {};
        QString line = QString::fromUtf8(file.read(longest)).section(QLatin1Char('\n'), 0, 0);
        line.removeIf([](QChar character) {
            return !character.isPrint() || character.isSurrogate() ||
                   character == QChar::ReplacementCharacter;
        });
        return line.trimmed();
    }
    std::optional<double> number(const char *name) const
    {
        bool ok = false;
        const qlonglong value = text(name).toLongLong(&ok);
        return ok ? std::optional<double>(double(value)) : std::nullopt;
    }
    bool isOn(const char *name) const { return number(name).value_or(0.0) > 0.0; }
    bool belongsToDevice() const { return text("scope") == QLatin1String("Device"); }

private:
    QString m_folder;
};

/// What is in a supply, what it would hold and what flows, in one unit: by energy, else by charge.
struct Level
{
    std::optional<double> now;
    std::optional<double> full;
    double flow = 0.0; // without a sign: some drivers report a discharge as negative

    static Level of(const Attributes &attributes)
    {
        Level level = {attributes.number("energy_now"), attributes.number("energy_full"),
                       std::abs(attributes.number("power_now").value_or(0.0))};
        if (!level.now)
            level = {attributes.number("charge_now"), attributes.number("charge_full"),
                     std::abs(attributes.number("current_now").value_or(0.0))};
        return level;
    }
};

std::optional<qlonglong> percentOf(const Attributes &attributes, const Level &level)
{
    std::optional<double> percent = attributes.number("capacity");
    if (!percent && level.now && level.full && *level.full > 0.0)
        percent = *level.now / *level.full * 100.0;
    if (!percent)
        return std::nullopt;
    return std::llround(std::clamp(*percent, 0.0, 100.0));
}

void insertMinutes(ZELKDictionary &properties, QLatin1String key, std::optional<double> seconds)
{
    if (seconds && *seconds >= 0.0 && *seconds / 60.0 <= mostMinutes)
        properties.insert(key, qlonglong(std::llround(*seconds / 60.0)));
}

std::optional<double> secondsFor(std::optional<double> amount, double flow)
{
    if (!amount || flow <= 0.0)
        return std::nullopt;
    return std::max(*amount, 0.0) / flow * 3600.0;
}

void insertTimes(ZELKDictionary &properties, const Attributes &attributes, const Level &level,
                 const QString &status)
{
    if (status == QLatin1String("Discharging")) {
        const auto told = attributes.number("time_to_empty_now");
        insertMinutes(properties, ZELKPropertyTimeToEmpty, told ? told : secondsFor(level.now, level.flow));
    } else if (status == QLatin1String("Charging")) {
        const auto told = attributes.number("time_to_full_now");
        const auto missing =
            level.now && level.full ? std::optional<double>(*level.full - *level.now) : std::nullopt;
        insertMinutes(properties, ZELKPropertyTimeToFullCharge,
                      told ? told : secondsFor(missing, level.flow));
    }
}

QLatin1String transportOf(const QString &folder)
{
    const QString place = QFileInfo(folder).canonicalFilePath();
    return QLatin1String(place.contains(QLatin1String("/usb")) ? "USB" : "Internal");
}

/// The computer's source of power: what its mains say, else what its batteries do.
QLatin1String sourceState(std::optional<bool> mains, const QString &status)
{
    if (mains)
        return *mains ? ZELKPowerSourceAC : ZELKPowerSourceBattery;
    if (status == QLatin1String("Discharging"))
        return ZELKPowerSourceBattery;
    const bool known = !status.isEmpty() && status != QLatin1String("Unknown");
    return known ? ZELKPowerSourceAC : ZELKPowerSourceUnknown;
}

ZELKPowerSupply supplyIn(const QString &folder, const QString &device, std::optional<bool> mains)
{
    const Attributes attributes(folder);
    ZELKPowerSupply supply;
    supply.device = device;
    supply.model = attributes.text("model_name");
    supply.isPresent = attributes.number("present").value_or(1.0) > 0.0;
    const QString status = attributes.text("status");
    const Level level = Level::of(attributes);

    ZELKDictionary &properties = supply.properties;
    properties.insert(ZELKPropertyIsPresent, supply.isPresent);
    properties.insert(ZELKPropertyIsCharging, supply.isPresent && status == QLatin1String("Charging"));
    if (supply.isPresent) {
        if (const auto percent = percentOf(attributes, level))
            properties.insert(ZELKPropertyCurrentCapacity, *percent);
        properties.insert(ZELKPropertyMaxCapacity, qlonglong(100));
        insertTimes(properties, attributes, level, status);
    }
    properties.insert(ZELKPropertyPowerSourceID, device);
    properties.insert(ZELKPropertyTransportType, QString(transportOf(folder)));
    if (const auto warning = attributes.number("capacity_alert_min");
        warning && *warning > 0.0 && *warning <= 100.0)
        properties.insert(ZELKPropertyLowWarnLevel, qlonglong(*warning));
    properties.insert(ZELKPropertyPowerSourceState, QString(sourceState(mains, status)));
    return supply;
}

} // namespace

std::vector<ZELKPowerSupply> ZELKPowerSupply::readAll(const QString &folder)
{
    const QDir supplies(folder);
    QStringList batteries;
    std::optional<bool> mains;
    for (const QString &name : supplies.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const Attributes attributes(supplies.filePath(name));
        const QString type = attributes.text("type");
        if (type.isEmpty() || attributes.belongsToDevice())
            continue;
        if (type == QLatin1String("Battery") || type == QLatin1String("UPS"))
            batteries.append(name);
        else
            mains = mains.value_or(false) || attributes.isOn("online");
    }
    std::vector<ZELKPowerSupply> result;
    for (const QString &name : batteries)
        result.push_back(supplyIn(supplies.filePath(name), name, mains));
    return result;
}
