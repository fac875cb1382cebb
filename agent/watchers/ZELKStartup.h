#pragma once

#include "ZELKAccountingRecords.h"
#include "ZELKLWAEvent.h"

#include <optional>

/// What is told of the running boot: one "startup", and the "accounting boot" that it follows.
///
/// The log takes a startup for the same boot as the newest entry of its group when that is an accounting
/// boot, however long ago that was. So in the order of dates a boot's accounting boot must come before its
/// startup, with nothing between them; two accounting boots are never taken for one, unless they are seconds
/// apart. Then it does not matter whether a shutdown or nothing at all stands before: each startup meets its
/// own boot. Therefore:
///
/// - Where this boot's record is known, the startup stands a microsecond after it. The kernel started earlier
///   than anything could be written; where its boot time is later now, the clock was set in between. So the
///   record alone decides, every agent finds the same date, and no clock step moves it. The record is told as
///   well, in the accounting file's own text, for the file may have been rotated since.
/// - Where this boot has no record, the startup has the kernel's boot time, but stands after the last record
///   of the file. If that is an older boot, which the startup would be taken for, an accounting boot at the
///   same time keeps the two apart.
struct ZELKStartup
{
    ZELKDate date;
    /// Whether an accounting boot is told, a microsecond before.
    bool tellsBoot = false;

    struct Evidence
    {
        /// By the present clock: it moves when the clock is set.
        ZELKDate kernelBoot;
        /// The boot record of utmp, which does not outlast the boot.
        std::optional<ZELKDate> ownRecord;
        /// The last boot or shutdown in the accounting file. A boot is ours unless it is older than the
        /// kernel, by more than the clock may have been put right since.
        std::optional<ZELKAccountingRecords::Record> lastRecord;
    };
    static ZELKStartup of(const Evidence &evidence);

    std::vector<ZELKLWAEvent> events() const;

    friend bool operator==(const ZELKStartup &, const ZELKStartup &) = default;
};

/// Keeps what was told of the running boot, so that it is told alike when the clock was set since.
class ZELKStartupMemory
{
public:
    virtual ~ZELKStartupMemory() = default;
    /// Nothing for another boot than the last one remembered.
    virtual std::optional<ZELKStartup> recall(const QString &bootID) const = 0;
    virtual void remember(const QString &bootID, const ZELKStartup &startup) = 0;
};
