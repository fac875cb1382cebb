#include "ZELKUPowerDevices.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using Status = ZELKPowerSupply::Status;

// UPower's numbers for kinds of devices.
constexpr int linePower = 1;
constexpr int battery = 2;
constexpr int uninterruptible = 3;
// ... and for states of batteries; above them are those of one that rests.
constexpr int unknown = 0;
constexpr int charging = 1;
constexpr int discharging = 2;

/// Nothing for what is missing or no number, whatever the daemon sends.
std::optional<double> number(const QVariantMap &properties, const char *key)
{
    const QVariant value = properties.value(QLatin1String(key));
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return std::isfinite(value.toDouble()) ? std::optional(value.toDouble()) : std::nullopt;
    default:
        return std::nullopt;
    }
}

/// Of small numbers that stand for something; -1 is none of them.
int code(const QVariantMap &properties, const char *key)
{
    const double value = number(properties, key).value_or(-1.0);
    return value >= 0.0 && value < 1000.0 ? int(value) : -1;
}

std::optional<bool> boolean(const QVariantMap &properties, const char *key)
{
    const QVariant value = properties.value(QLatin1String(key));
    return value.typeId() == QMetaType::Bool ? std::optional(value.toBool()) : std::nullopt;
}

QString text(const QVariantMap &properties, const char *key)
{
    const QVariant value = properties.value(QLatin1String(key));
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

/// The kernel's name; empty where there is none.
QString deviceOf(const QString &nativePath)
{
    return nativePath.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
}

bool isMains(const QVariantMap &properties)
{
    return code(properties, "Type") == linePower && boolean(properties, "PowerSupply").value_or(true);
}

bool isSupply(const QVariantMap &properties)
{
    const int type = code(properties, "Type");
    return type == uninterruptible || (type == battery && boolean(properties, "PowerSupply").value_or(false));
}

Status statusOf(int state)
{
    if (state == charging)
        return Status::Charging;
    if (state == discharging)
        return Status::Discharging;
    return state <= unknown ? Status::Unknown : Status::Resting;
}

/// 0 stands for a time that UPower does not know.
std::optional<double> seconds(const QVariantMap &properties, const char *key)
{
    const auto value = number(properties, key);
    return value && *value > 0.0 ? value : std::nullopt;
}

/// A battery of which UPower could read nothing has 0 of everything.
std::optional<double> percentOf(const QVariantMap &properties)
{
    const auto percent = number(properties, "Percentage");
    const bool nothingRead = percent == 0.0 && statusOf(code(properties, "State")) == Status::Unknown &&
                             number(properties, "Energy").value_or(0.0) == 0.0;
    return nothingRead ? std::nullopt : percent;
}

} // namespace

void ZELKUPowerDevices::clear()
{
    m_devices.clear();
    m_onBattery.reset();
}

bool ZELKUPowerDevices::setDevice(const QString &path, const QVariantMap &properties)
{
    const bool ours =
        (isMains(properties) || isSupply(properties)) && !deviceOf(text(properties, "NativePath")).isEmpty();
    if (ours)
        m_devices[path] = properties;
    else
        m_devices.erase(path);
    return ours;
}

bool ZELKUPowerDevices::changeDevice(const QString &path, const QVariantMap &changes)
{
    const auto device = m_devices.find(path);
    if (device == m_devices.end())
        return false;
    device->second.insert(changes);
    return true;
}

bool ZELKUPowerDevices::removeDevice(const QString &path)
{
    return m_devices.erase(path) > 0;
}

bool ZELKUPowerDevices::setOnBattery(std::optional<bool> onBattery)
{
    return std::exchange(m_onBattery, onBattery) != onBattery;
}

std::vector<QString> ZELKUPowerDevices::paths() const
{
    std::vector<QString> result;
    for (const auto &device : m_devices)
        result.push_back(device.first);
    return result;
}

/// Counted in whole seconds, as UPower does. A daemon that does not say when it read is believed.
bool ZELKUPowerDevices::wasReadSince(const QVariantMap &properties, double secondsAfterWake) const
{
    const auto read = number(properties, "UpdateTime");
    if (!m_wake || !read || *read <= 0.0)
        return true;
    const double wake = m_wake->timeIntervalSinceReferenceDate() + ZELKDate::secondsFrom1970;
    return *read >= std::floor(wake) + secondsAfterWake;
}

ZELKUPowerDevices::Mains ZELKUPowerDevices::mains() const
{
    Mains result;
    for (const auto &[path, properties] : m_devices) {
        if (!isMains(properties))
            continue;
        result.online = result.online.value_or(false) || boolean(properties, "Online").value_or(false);
        result.isCurrent = result.isCurrent && wasReadSince(properties, 0.0);
    }
    return result;
}

ZELKPowerSupply ZELKUPowerDevices::supplyOf(const QVariantMap &properties) const
{
    const QString nativePath = text(properties, "NativePath");
    ZELKPowerSupply supply;
    supply.device = deviceOf(nativePath);
    supply.path =
        nativePath.startsWith(QLatin1Char('/')) ? nativePath : m_folder + QLatin1Char('/') + nativePath;
    supply.model = text(properties, "Model");
    supply.isPresent = boolean(properties, "IsPresent").value_or(true);
    supply.status = statusOf(code(properties, "State"));
    supply.percent = percentOf(properties);
    supply.secondsToEmpty = seconds(properties, "TimeToEmpty");
    supply.secondsToFull = seconds(properties, "TimeToFull");
    supply.lowWarnPercent = m_levels.lowPercent;
    supply.shutdownPercent = m_levels.actionPercent;
    return supply;
}

std::vector<ZELKPowerSupply> ZELKUPowerDevices::supplies(ZELKDate now) const
{
    const bool clockWasSetBack = m_wake && now < *m_wake;
    const Mains line = mains();
    std::vector<ZELKPowerSupply> result;
    for (const auto &[path, properties] : m_devices) {
        if (!isSupply(properties))
            continue;
        ZELKPowerSupply supply = supplyOf(properties);
        supply.isCurrent =
            clockWasSetBack || wasReadSince(properties, line.isCurrent ? 0.0 : secondsToReadMains);
        result.push_back(supply);
    }
    std::sort(result.begin(), result.end(),
              [](const auto &one, const auto &other) { return one.device < other.device; });
    // The daemon goes by the batteries then: that none drains does not tell that there are mains.
    const auto byDaemon = m_onBattery.value_or(false) ? std::optional(false) : std::nullopt;
    ZELKPowerSupply::setSourceStates(result, line.online ? line.online : byDaemon);
    return result;
}
