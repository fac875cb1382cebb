#include "ZELKKernelPowerSupplies.h"

#include "ZELKKernelAttributes.h"

#include <QDir>

#include <cmath>

namespace {

using Attributes = ZELKKernelAttributes;
using Status = ZELKPowerSupply::Status;

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

Status statusOf(const QString &text)
{
    if (text == QLatin1String("Charging"))
        return Status::Charging;
    if (text == QLatin1String("Discharging"))
        return Status::Discharging;
    return text.isEmpty() || text == QLatin1String("Unknown") ? Status::Unknown : Status::Resting;
}

std::optional<double> percentOf(const Attributes &attributes, const Level &level)
{
    if (const auto told = attributes.number("capacity"))
        return told;
    if (level.now && level.full && *level.full > 0.0)
        return *level.now / *level.full * 100.0;
    return std::nullopt;
}

std::optional<double> secondsFor(std::optional<double> amount, double flow)
{
    if (!amount || flow <= 0.0)
        return std::nullopt;
    return std::max(*amount, 0.0) / flow * 3600.0;
}

ZELKPowerSupply supplyIn(const QString &folder, const QString &device)
{
    const Attributes attributes(folder);
    const Level level = Level::of(attributes);
    const auto missing =
        level.now && level.full ? std::optional<double>(*level.full - *level.now) : std::nullopt;
    const auto timeToEmpty = attributes.number("time_to_empty_now");
    const auto timeToFull = attributes.number("time_to_full_now");

    ZELKPowerSupply supply;
    supply.device = device;
    supply.path = folder;
    supply.model = attributes.text("model_name");
    supply.isPresent = attributes.number("present").value_or(1.0) > 0.0;
    supply.status = statusOf(attributes.text("status"));
    supply.percent = percentOf(attributes, level);
    supply.secondsToEmpty = timeToEmpty ? timeToEmpty : secondsFor(level.now, level.flow);
    supply.secondsToFull = timeToFull ? timeToFull : secondsFor(missing, level.flow);
    supply.lowWarnPercent = attributes.number("capacity_alert_min");
    return supply;
}

} // namespace

std::vector<ZELKPowerSupply> ZELKKernelPowerSupplies::read(const QString &folder)
{
    const QDir supplies(folder);
    std::vector<ZELKPowerSupply> result;
    std::optional<bool> mains;
    for (const QString &name : supplies.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const Attributes attributes(supplies.filePath(name));
        const QString type = attributes.text("type");
        if (type.isEmpty() || attributes.text("scope") == QLatin1String("Device"))
            continue;
        if (type == QLatin1String("Battery") || type == QLatin1String("UPS"))
            result.push_back(supplyIn(supplies.filePath(name), name));
        else
            mains = mains.value_or(false) || attributes.isOn("online");
    }
    ZELKPowerSupply::setSourceStates(result, mains);
    return result;
}

bool ZELKKernelPowerSupplies::isThere(const QString &path)
{
    return QFileInfo(path).isDir() && Attributes(path).number("present").value_or(1.0) > 0.0;
}
