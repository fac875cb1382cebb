#pragma once

#include "ZELKLWCLogEntry.h"

/// The system sleeping, waking, starting and shutting down. Its pair is the older entry of the group; the
/// state from here on is known with or without a pair.
class ZELKLWCLogEntryPowerState final : public ZELKLWCLogEntry
{
public:
    using ZELKLWCLogEntry::ZELKLWCLogEntry;
    static QString groupName();

    void awakeFromLog() override;
    /// A repeat within five seconds; and, whatever the time between them, "startup" and "accounting boot" in
    /// either order: the two records of one boot, from different sources, become one entry. That is meant.
    bool isLike(const ZELKLWCLogEntry &other) const override;

protected:
    QString composeSummary() const override;
    void buildAttributes(ZELKEntryArena::Attributes &attributes) const override;
};
