#pragma once

#include "ZELKLWAEvent.h"
#include "ZELKPowerSourceNames.h"

#include <map>
#include <optional>

/// What has been told of each power source, and so which readings are worth an event: the first one, those
/// that differ in more than the time estimates, and the leaving of a source, once. Readers that take turns
/// share a ledger, so that a change of reader is no event.
class ZELKPowerSourceLedger
{
public:
    /// `names` keeps the sources' names, and outlives this; without it they are given anew.
    explicit ZELKPowerSourceLedger(ZELKPowerSourceNameMemory *names = nullptr);

    /// `supplies` are all that the reader knows now; one that is not current is there, and no more is said of
    /// it. One that is missing has left when the kernel no longer shows it either: a daemon that goes away
    /// gives up its devices too.
    std::vector<ZELKLWAEvent> eventsFor(const std::vector<ZELKPowerSupply> &supplies, ZELKDate now);

    /// What comes next is another reader's. Of each source, what every reader tells alike decides whether its
    /// first reading there is worth an event.
    void readerDidChange();

private:
    struct Known
    {
        ZELKDictionary told; ///< without the time estimates
        QString path;
        bool isPresent = true;
        bool byOtherReader = false;
    };
    std::optional<ZELKDictionary> news(const ZELKPowerSupply &supply);
    ZELKDictionary named(const ZELKPowerSupply &supply, bool otherReader);
    ZELKPowerSupply leaving(ZELKPowerSupply supply) const;
    static ZELKDictionary leave(Known &known);

    std::map<QString, Known> m_known; ///< by the kernel's name, once seen present
    ZELKPowerSourceNames m_names;
};
