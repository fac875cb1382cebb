#pragma once

#include "ZELKLWCLogEntry.h"

/// Idle sleep being considered, and being vetoed by processes. Stands in the group of its monitor's raw
/// identifier; has no pair.
class ZELKLWCLogEntryIdleSleep final : public ZELKLWCLogEntry
{
public:
    using ZELKLWCLogEntry::ZELKLWCLogEntry;

    bool isLike(const ZELKLWCLogEntry &other) const override { return isRepeatOf(other); }

protected:
    QString composeSummary() const override;
    /// "Properties" with the idle time when there was one, and "Processes".
    void buildAttributes(ZELKEntryArena::Attributes &attributes) const override;
};
