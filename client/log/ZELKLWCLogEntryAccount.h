#pragma once

#include "ZELKLWCLogEntry.h"

/// Boots and shutdowns in a group of their own. The default registry of the log never chooses this kind; it
/// is there for a registry that maps the accounting events to it.
class ZELKLWCLogEntryAccount final : public ZELKLWCLogEntry
{
public:
    using ZELKLWCLogEntry::ZELKLWCLogEntry;
    static QString groupName();

    void awakeFromLog() override;
    bool isLike(const ZELKLWCLogEntry &other) const override { return isRepeatOf(other); }
};
