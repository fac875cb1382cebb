#include "ZELKLWCLogEntryIdleSleep.h"

#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKLWCDuration.h"

QString ZELKLWCLogEntryIdleSleep::composeSummary() const
{
    if (eventId() != ZELKEntryWords::CanSystemSleep)
        return ZELKLWCLogEntry::composeSummary();
    const int idle = packed().intValue(packedProperties(), ZELKPackedProperties::IdleSeconds);
    return ZELKFormat(general(QLatin1String("Preparing to sleep after %@ idle time")),
                      {ZELKLWCDuration::longStringFromDuration(idle)});
}

void ZELKLWCLogEntryIdleSleep::buildAttributes(ZELKEntryArena::Attributes &attributes) const
{
    const int idle = packed().intValue(packedProperties(), ZELKPackedProperties::IdleSeconds);
    if (idle > 0) {
        const ZELKDictionary values{{general(ZELKPropertyIdleSeconds),
                                     QVariant::fromValue(ZELKLWCDuration::durationWithTimeInterval(idle))}};
        attributes.set(general(QLatin1String("Properties")), QVariant::fromValue(values));
    }
    const QVariant processes = packed().value(packedProperties(), ZELKPackedProperties::Processes);
    if (processes.isValid())
        attributes.set(general(ZELKPropertyProcesses), processes);
    ZELKLWCLogEntry::buildAttributes(attributes);
}
