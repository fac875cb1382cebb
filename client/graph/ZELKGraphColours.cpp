#include "ZELKGraphColours.h"

#include "ZELKEventVocabulary.h"

namespace ZELKGraphColours {

std::optional<QColor> stateColour(const QString &state)
{
    if (state == ZELKStateOff)
        return QColor::fromRgbF(0.0481521F, 0.0699218F, 0.176471F, 0.85143F);
    if (state == ZELKStateAsleep)
        return QColor::fromRgbF(0.028552F, 0.0109792F, 0.38914F, 0.690476F);
    if (state == ZELKStateUnmonitored)
        return QColor::fromRgbF(0.0F, 0.0F, 0.0F, 0.4F);
    return std::nullopt;
}

QStringList colouredStates()
{
    return {ZELKStateOff, ZELKStateAsleep, ZELKStateUnmonitored};
}

std::optional<QColor> batteryColour(const QString &powerSource)
{
    if (powerSource == ZELKPowerSourceAC)
        return QColor::fromRgbF(0.0F, 1.0F, 0.0F);
    if (powerSource == ZELKPowerSourceBattery)
        return QColor::fromRgbF(1.0F, 0.5F, 0.0F);
    return std::nullopt;
}

} // namespace ZELKGraphColours
