#include "ZELKEntryWords.h"

#include "ZELKEventVocabulary.h"

void ZELKEntryWords::internAll(ZELKStringPool &pool)
{
    for (const QLatin1String word :
         {ZELKStateMonitored, ZELKStateUnmonitored, ZELKStateAwake, ZELKStateAsleep, ZELKStateOn,
          ZELKStateOff, ZELKEventStartingMonitor, ZELKEventStoppingMonitor, ZELKEventCanSystemSleep,
          ZELKEventSystemWillNotSleep, ZELKEventSystemWillSleep, ZELKEventSystemHasPoweredOn,
          ZELKEventStartup, ZELKEventAccountingBoot, ZELKEventAccountingShutDown, ZELKEventPowerStateChanged})
        pool.intern(std::string_view(word.data(), std::size_t(word.size())));
    Q_ASSERT(pool.size() == last);
}
