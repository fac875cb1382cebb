#pragma once

#include "ZELKLWAEvent.h"

#include <QByteArray>

#include <compare>
#include <optional>

/// A line of the systemd journal that has to do with sleep.
struct ZELKSleepMark
{
    enum class Kind {
        Started,     ///< the service manager puts the system to sleep
        Ended,       ///< it came back
        Failed,      ///< it never slept
        KernelEntry, ///< the kernel's own line, whoever wanted the sleep
        KernelExit
    };

    /// 32 hexadecimal digits.
    QByteArray boot;
    /// Microseconds of the boot, which stand still during sleep.
    qint64 monotonic = 0;
    Kind kind = Kind::Started;
    /// Microseconds since 1970.
    qint64 realtime = 0;

    friend auto operator<=>(const ZELKSleepMark &a, const ZELKSleepMark &b)
    {
        if (const int order = a.boot.compare(b.boot); order != 0)
            return order <=> 0;
        if (a.monotonic != b.monotonic)
            return a.monotonic <=> b.monotonic;
        return a.kind != b.kind ? a.kind <=> b.kind : a.realtime <=> b.realtime;
    }
    friend bool operator==(const ZELKSleepMark &, const ZELKSleepMark &) = default;

    /// One line of text with its end, as the reader of the journal hands marks on.
    QByteArray line() const;
    /// Nothing for any other text, or for a moment before 1990 or after 2200.
    static std::optional<ZELKSleepMark> fromLine(const QByteArray &line);
};

/// The sleeps that the marks of a journal tell of.
namespace ZELKSleepHistory {

/// In ascending order of dates, the same whatever the order of the marks, and though marks be there twice.
///
/// A sleep that came about is "System will sleep" and "System has powered on", one that failed only "System
/// will not sleep". Where one of the two marks is lost the other is told. The kernel's lines count where the
/// service manager has no mark for them. What belongs together is told by the boot and its clock that stands
/// still during sleep: a sleep is short by it, and no setting of the clock disorders it.
std::vector<ZELKLWAEvent> events(std::vector<ZELKSleepMark> marks);

} // namespace ZELKSleepHistory
