#include "ZELKLWCLogEntryPowerState.h"

#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKLWCDuration.h"

namespace {

struct Meaning
{
    ZELKStringPool::Id state = ZELKStringPool::nil;
    QLatin1String format;
};

/// Empty for an event that is none of the kind's own, as a registry may bring.
Meaning meaningOf(ZELKStringPool::Id event)
{
    switch (event) {
    case ZELKEntryWords::SystemWillSleep:
        return {ZELKEntryWords::Asleep, QLatin1String("System sleeping after %@")};
    case ZELKEntryWords::SystemHasPoweredOn:
        return {ZELKEntryWords::Awake, QLatin1String("System powering on after %@")};
    case ZELKEntryWords::AccountingShutDown:
        return {ZELKEntryWords::Off, QLatin1String("Shutting down after %@")};
    case ZELKEntryWords::Startup:
    case ZELKEntryWords::AccountingBoot:
        return {ZELKEntryWords::On, QLatin1String("Starting up after %@")};
    default:
        return {};
    }
}

} // namespace

QString ZELKLWCLogEntryPowerState::groupName()
{
    return ZELKGroupPowerState;
}

void ZELKLWCLogEntryPowerState::awakeFromLog()
{
    setPair(next());
    setPairRepresentsId(meaningOf(eventId()).state);
    initAttributes();
}

QString ZELKLWCLogEntryPowerState::composeSummary() const
{
    const QLatin1String format = meaningOf(eventId()).format;
    if (!pair() || format.isEmpty())
        return ZELKLWCLogEntry::composeSummary();
    return ZELKFormat(general(format), {ZELKLWCDuration::longStringFromDuration(pairTimeInterval())});
}

void ZELKLWCLogEntryPowerState::buildAttributes(ZELKEntryArena::Attributes &attributes) const
{
    if (pair()) {
        const ZELKDictionary values{{general(QLatin1String("Duration")),
                                     ZELKLWCDuration::shortStringFromDuration(pairTimeInterval())}};
        attributes.set(general(QLatin1String("Properties")), QVariant::fromValue(values));
    }
    ZELKLWCLogEntry::buildAttributes(attributes);
}

bool ZELKLWCLogEntryPowerState::isLike(const ZELKLWCLogEntry &other) const
{
    if (other.kind() != kind())
        return false;
    const bool bothRecordsOfABoot =
        (eventId() == ZELKEntryWords::Startup && other.eventId() == ZELKEntryWords::AccountingBoot) ||
        (eventId() == ZELKEntryWords::AccountingBoot && other.eventId() == ZELKEntryWords::Startup);
    return bothRecordsOfABoot || isRepeatOf(other);
}
