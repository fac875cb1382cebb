#include "ZELKLWCLogEntryDaemon.h"

#include "ZELKEventVocabulary.h"

QString ZELKLWCLogEntryDaemon::groupName()
{
    return ZELKGroupMonitoring;
}

void ZELKLWCLogEntryDaemon::awakeFromLog()
{
    setPair(next());
    if (pair() && eventId() == ZELKEntryWords::StartingMonitor)
        setPairRepresentsId(ZELKEntryWords::Monitored);
    else if (pair() && eventId() == ZELKEntryWords::StoppingMonitor)
        setPairRepresentsId(ZELKEntryWords::Unmonitored);
    initAttributes();
}
