#pragma once

#include "ZELKLWCLogEntry.h"

/// The recorder starting and stopping. Its pair is the older entry of the group; with a pair, the time from
/// here on is "Monitored" or "Unmonitored".
class ZELKLWCLogEntryDaemon final : public ZELKLWCLogEntry
{
public:
    using ZELKLWCLogEntry::ZELKLWCLogEntry;
    static QString groupName();

    void awakeFromLog() override;
    bool isLike(const ZELKLWCLogEntry &other) const override { return isRepeatOf(other); }
};
