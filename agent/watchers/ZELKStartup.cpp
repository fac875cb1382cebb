#include "ZELKStartup.h"

#include <algorithm>

namespace {

constexpr double microsecond = 1e-6;
/// A clock that was right to this when the record was written is the usual one.
constexpr double mostSecondsPutRight = 60.0;

} // namespace

ZELKStartup ZELKStartup::of(const Evidence &evidence)
{
    if (evidence.ownRecord)
        return {evidence.ownRecord->addingTimeInterval(microsecond), true};
    if (!evidence.lastRecord)
        return {evidence.kernelBoot, false};
    const bool boot = evidence.lastRecord->kind == ZELKAccountingRecords::Kind::Boot;
    const ZELKDate after = evidence.lastRecord->date.addingTimeInterval(microsecond);
    if (boot && evidence.lastRecord->date > evidence.kernelBoot.addingTimeInterval(-mostSecondsPutRight))
        return {after, true};
    return {std::max(evidence.kernelBoot, after), boot};
}

std::vector<ZELKLWAEvent> ZELKStartup::events() const
{
    std::vector<ZELKLWAEvent> events;
    if (tellsBoot)
        events.push_back(ZELKAccountingRecords::Record{ZELKAccountingRecords::Kind::Boot,
                                                       date.addingTimeInterval(-microsecond)}
                             .event());
    events.push_back({date, ZELKEventStartup, ZELKMonitorSystemAccounting, ZELKEventNoProperties});
    return events;
}
