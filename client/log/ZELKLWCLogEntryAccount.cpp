#include "ZELKLWCLogEntryAccount.h"

#include "ZELKEventVocabulary.h"

QString ZELKLWCLogEntryAccount::groupName()
{
    return ZELKGroupSystem;
}

void ZELKLWCLogEntryAccount::awakeFromLog()
{
    setPair(next());
    if (pair() && eventId() == ZELKEntryWords::AccountingBoot)
        setPairRepresentsId(ZELKEntryWords::On);
    else if (pair() && eventId() == ZELKEntryWords::AccountingShutDown)
        setPairRepresentsId(ZELKEntryWords::Off);
    initAttributes();
}
