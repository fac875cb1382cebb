#include "ZELKPowerSupply.h"

#include "ZELKEventVocabulary.h"
#include "ZELKKernelAttributes.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

using Status = ZELKPowerSupply::Status;

/// Longer estimates come from a current that is as good as none.
constexpr double mostMinutes = 7.0 * 24.0 * 60.0;

void insertMinutes(ZELKDictionary &properties, QLatin1String key, std::optional<double> seconds)
{
    if (seconds && *seconds >= 0.0 && *seconds / 60.0 <= mostMinutes)
        properties.insert(key, qlonglong(std::llround(*seconds / 60.0)));
}

void insertLevel(ZELKDictionary &properties, QLatin1String key, std::optional<double> percent)
{
    if (percent && *percent > 0.0 && *percent <= 100.0)
        properties.insert(key, qlonglong(std::llround(*percent)));
}

QString transportOf(const QString &path)
{
    const QString place = QFileInfo(path).canonicalFilePath();
    return QLatin1String(place.contains(QLatin1String("/usb")) ? "USB" : "Internal");
}

QLatin1String sourceState(std::optional<bool> mains, bool anyDischarging, Status status)
{
    if (mains)
        return *mains ? ZELKPowerSourceAC : ZELKPowerSourceBattery;
    if (anyDischarging)
        return ZELKPowerSourceBattery;
    return status == Status::Unknown ? ZELKPowerSourceUnknown : ZELKPowerSourceAC;
}

} // namespace

ZELKDictionary ZELKPowerSupply::properties() const
{
    ZELKDictionary result{{ZELKPropertyIsPresent, isPresent},
                          {ZELKPropertyIsCharging, isPresent && status == Status::Charging}};
    if (percent && std::isfinite(*percent))
        result.insert(ZELKPropertyCurrentCapacity, qlonglong(std::llround(std::clamp(*percent, 0.0, 100.0))));
    result.insert(ZELKPropertyMaxCapacity, qlonglong(100));
    if (isPresent && status == Status::Discharging)
        insertMinutes(result, ZELKPropertyTimeToEmpty, secondsToEmpty);
    if (isPresent && status == Status::Charging)
        insertMinutes(result, ZELKPropertyTimeToFullCharge, secondsToFull);
    result.insert(ZELKPropertyPowerSourceID, device);
    result.insert(ZELKPropertyTransportType, transportOf(path));
    insertLevel(result, ZELKPropertyLowWarnLevel, lowWarnPercent);
    insertLevel(result, ZELKPropertyShutdownLevel, shutdownPercent);
    result.insert(ZELKPropertyPowerSourceState, sourceState);
    return result;
}

QString ZELKPowerSupply::plainName() const
{
    const QString name = ZELKKernelAttributes::printable(model);
    return name.isEmpty() ? device : name;
}

void ZELKPowerSupply::setSourceStates(std::vector<ZELKPowerSupply> &supplies, std::optional<bool> mains)
{
    const bool anyDischarging = std::any_of(supplies.begin(), supplies.end(), [](const auto &supply) {
        return supply.isPresent && supply.isCurrent && supply.status == Status::Discharging;
    });
    for (ZELKPowerSupply &supply : supplies)
        supply.sourceState = ::sourceState(mains, anyDischarging, supply.status);
}
