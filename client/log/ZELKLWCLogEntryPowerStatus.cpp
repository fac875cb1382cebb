#include "ZELKLWCLogEntryPowerStatus.h"

#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKLWCDuration.h"
#include "ZELKLWCGroupEnumerator.h"
#include "ZELKValue.h"

#include <algorithm>
#include <limits>

namespace {

constexpr double secondsInMinute = 60.0;

const ZELKLWCLogEntryPowerStatus *powerStatus(const ZELKLWCLogEntry *entry)
{
    return entry && entry->kind() == ZELKEntryKind::PowerStatus
               ? static_cast<const ZELKLWCLogEntryPowerStatus *>(entry)
               : nullptr;
}

} // namespace

QString ZELKLWCLogEntryPowerStatus::groupName(const QString &monitor, const QString &name)
{
    return ZELKFormat(general(QLatin1String("%@ - %@")),
                      {monitor, name.isNull() ? QVariant() : QVariant(name)});
}

bool ZELKLWCLogEntryPowerStatus::agrees(std::initializer_list<Key> keys, const ZELKLWCLogEntry *other) const
{
    return other && packed().equalValues(other->packedProperties(), packedProperties(), keys);
}

bool ZELKLWCLogEntryPowerStatus::differs(Key key, const ZELKLWCLogEntry *other) const
{
    return !agrees({key}, other);
}

ZELKLWCLogEntryPowerStatus::Change ZELKLWCLogEntryPowerStatus::classify() const
{
    if (agrees({Key::IsPresent, Key::PowerSourceState, Key::IsCharging}, next()))
        return LevelChanged;
    if (differs(Key::IsPresent, next()))
        return PresenceChanged;
    return differs(Key::PowerSourceState, next()) ? PowerSourceChanged : ChargingChanged;
}

void ZELKLWCLogEntryPowerStatus::awakeFromLog()
{
    m_change = classify();
    initPairing();
    initAttributes();
}

void ZELKLWCLogEntryPowerStatus::initPairing()
{
    if (m_change != ChargingChanged && m_change != PresenceChanged && m_change != PowerSourceChanged)
        return;
    ZELKLWCGroupEnumerator group = pastGroupEnumerator();
    ZELKLWCLogEntry *entry = group.nextObject();
    while (entry && (!powerStatus(entry) || powerStatus(entry)->m_change != m_change))
        entry = group.nextObject();
    setPair(entry);
}

bool ZELKLWCLogEntryPowerStatus::isLike(const ZELKLWCLogEntry &other) const
{
    const ZELKLWCLogEntryPowerStatus *reading = powerStatus(&other);
    if (!reading)
        return false;
    if (!differs(Key::IsPresent, reading) && !differs(Key::IsCharging, reading) &&
        !differs(Key::PowerSourceState, reading) && percentageCharged() == reading->percentageCharged())
        return true;
    return packed().equal(packedProperties(), reading->packedProperties());
}

bool ZELKLWCLogEntryPowerStatus::isEquallyCharged(const ZELKLWCLogEntryPowerStatus &other) const
{
    const bool sameCapacities = agrees({Key::CurrentCapacity, Key::MaxCapacity}, &other);
    return sameCapacities || percentageCharged() == other.percentageCharged();
}

bool ZELKLWCLogEntryPowerStatus::stateForPropertyKey(const QString &key) const
{
    return ZELKValue::intValue(property(key)) == 1;
}

bool ZELKLWCLogEntryPowerStatus::connected() const
{
    return packed().intValue(packedProperties(), Key::IsPresent) == 1;
}

bool ZELKLWCLogEntryPowerStatus::charging() const
{
    return packed().intValue(packedProperties(), Key::IsCharging) == 1;
}

bool ZELKLWCLogEntryPowerStatus::didPropertyKeyChangeSinceEntry(const QString &key,
                                                                const ZELKLWCLogEntry *older) const
{
    return !older || !ZELKValue::isEqual(older->property(key), property(key));
}

int ZELKLWCLogEntryPowerStatus::percentageCharged() const
{
    const float current = packed().floatValue(packedProperties(), Key::CurrentCapacity);
    const float maximum = packed().floatValue(packedProperties(), Key::MaxCapacity);
    const double percentage = double(current) * (double(maximum) / 100.0);
    constexpr double most = std::numeric_limits<int>::max();
    return percentage == percentage ? int(std::clamp(percentage, -most, most)) : 0;
}

QString ZELKLWCLogEntryPowerStatus::valueText(Key key) const
{
    return ZELKValue::description(packed().value(packedProperties(), key));
}

QString ZELKLWCLogEntryPowerStatus::levelSummary() const
{
    QLatin1String direction("at");
    if (const ZELKLWCLogEntryPowerStatus *older = powerStatus(next()))
        direction = percentageCharged() > older->percentageCharged() ? QLatin1String("up to")
                                                                     : QLatin1String("down to");
    return ZELKFormat(general(QLatin1String("'%@' %@ %d%% capacity")),
                      {valueText(Key::Name), general(direction), percentageCharged()});
}

QString ZELKLWCLogEntryPowerStatus::composeSummary() const
{
    const QString name = valueText(Key::Name);
    const QString source = valueText(Key::PowerSourceState);
    switch (m_change) {
    case PresenceChanged:
        return packed().intValue(packedProperties(), Key::IsPresent)
                   ? ZELKFormat(general(QLatin1String("'%@' connected")), {name})
                   : ZELKFormat(general(QLatin1String("'%@' removed")), {name});
    case PowerSourceChanged:
        return ZELKFormat(general(QLatin1String("Switched to '%@'")), {source});
    case ChargingChanged:
        return charging()
                   ? ZELKFormat(general(QLatin1String("Started charging '%@' from '%@'")), {name, source})
                   : ZELKFormat(general(QLatin1String("Stopped charging '%@'")), {name});
    case LevelChanged:
        return levelSummary();
    default:
        return ZELKLWCLogEntry::composeSummary();
    }
}

void ZELKLWCLogEntryPowerStatus::addPropertyWithKey(const QString &key, ZELKDictionary &dictionary) const
{
    const QVariant value = property(key);
    if (value.isValid())
        dictionary.insert(localizedStringForKey(key, key, QStringLiteral("General")), value);
}

void ZELKLWCLogEntryPowerStatus::addDurationPropertyWithKey(const QString &key,
                                                            ZELKDictionary &dictionary) const
{
    const int minutes = ZELKValue::intValue(property(key));
    if (minutes >= 1)
        dictionary.insert(
            localizedStringForKey(key, key, QStringLiteral("General")),
            QVariant::fromValue(ZELKLWCDuration::durationWithTimeInterval(minutes * secondsInMinute)));
}

ZELKDictionary ZELKLWCLogEntryPowerStatus::deviceValues() const
{
    ZELKDictionary device;
    addPropertyWithKey(ZELKPropertyName, device);
    addPropertyWithKey(ZELKPropertyTransportType, device);
    device.insert(general(ZELKPropertyCurrentCapacity),
                  ZELKFormat(general(QLatin1String("%d%%")), {percentageCharged()}));
    addDurationPropertyWithKey(ZELKPropertyTimeToEmpty, device);
    addDurationPropertyWithKey(ZELKPropertyTimeToFullCharge, device);
    addPropertyWithKey(ZELKPropertyPowerSourceID, device);
    addPropertyWithKey(ZELKPropertyLowWarnLevel, device);
    addPropertyWithKey(ZELKPropertyShutdownLevel, device);
    if (pair())
        device.insert(general(QLatin1String("Duration")),
                      ZELKLWCDuration::shortStringFromDuration(pairTimeInterval()));
    return device;
}

void ZELKLWCLogEntryPowerStatus::buildAttributes(ZELKEntryArena::Attributes &attributes) const
{
    attributes.set(QStringLiteral("Device"), QVariant::fromValue(deviceValues()));
    ZELKLWCLogEntry::buildAttributes(attributes);
}
