#pragma once

#include "ZELKLWCAbsoluteDuration.h"
#include "ZELKWallClockTimer.h"

#include <QObject>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class ZELKUserDefaults;

/// The calendar period that the main window shows: eight presets or a custom range, on whole local days, kept
/// within the span of the recorded data and remembered across launches.
///
/// Tags: 1 today, 2 yesterday, 3 last seven days, 4 this month, 5 last month, 6 this week, 7 last week
/// (Monday to Sunday), 8 everything, 9 custom; 0 until one is chosen. The slots assert and throw as any
/// function does: connect them through zelkGuard.
class ZELKLWCDateRangeController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int selectionTag READ selectionTag WRITE setSelectionTag NOTIFY selectionTagChanged)

public:
    using Range = std::shared_ptr<ZELKLWCAbsoluteDuration>;

    static constexpr int customTag = 9;

    enum class Action {
        ZoomIn,
        ZoomOut,
        DayForward,
        DayBackward,
        MonthForward,
        MonthBackward,
        TakeSelectionTagFrom,
        Other
    };
    enum class ApplicationNotification { DidFinishLaunching, WillTerminate, Other };

    /// `defaults` must outlive the controller: "dateRange" sets the tag, and the range is remembered there.
    explicit ZELKLWCDateRangeController(ZELKUserDefaults &defaults, QObject *parent = nullptr);

    /// Presets, the tag stored under "dateRange" (then and whenever it changes; a tag chosen here is not
    /// written back), the midnight timer, and today as the bounds until the log knows better.
    void awakeFromNib();
    /// Restores the range after the launch and saves it at the end.
    void applicationDidNotify(ApplicationNotification notification);

    /// Null until a range was set.
    std::shared_ptr<const ZELKLWCAbsoluteDuration> absoluteDuration() const { return m_absoluteDuration; }
    /// Takes up the object itself and adjusts its dates in place: whole days, at least one, within the
    /// bounds. One oddity is meant: a range shorter than its first day, of whatever hours, is made to end at
    /// the next midnight, not a second before it, and so is no preset. Does nothing when this is the object
    /// already held; null asserts.
    void setAbsoluteDuration(const Range &range);
    int selectionTag() const { return m_selectionTag; }
    /// A preset's tag sets its range; every other tag becomes 9 and leaves the range as it is. Where several
    /// presets are the same period, the tag becomes the last one's.
    void setSelectionTag(int tag);
    /// Takes the tag of the last preset that is the same period as `range`, else 9.
    void updateSelectionTagWithAbsoluteDuration(const ZELKLWCAbsoluteDuration *range);
    /// A preset is set again, as it is now; a custom range takes the tag of the first preset that it has
    /// become.
    void synchronise();

    /// The tag that the user picked from the pop-up, a menu or the tool bar. The pop-up is told in any case.
    void takeSelectionTagFrom(int tag);
    /// False for a preset that does not lie within the bounds.
    bool canSelectTag(int tag) const;

    /// Floored and ceiled to whole days; the system's distant dates until they are set.
    ZELKDate distantPast() const { return m_distantPast.value_or(ZELKDate::distantPast()); }
    ZELKDate distantFuture() const { return m_distantFuture.value_or(ZELKDate::distantFuture()); }
    /// The span of the recorded data. What was restored earlier had to lie within today, and is taken up
    /// anew.
    void setDistantPastDistantFuture(std::optional<ZELKDate> past, std::optional<ZELKDate> future);
    /// 00:00:00 and 23:59:59 of the local day. An absent date asserts.
    static ZELKDate floorDate(std::optional<ZELKDate> date);
    static ZELKDate ceilingDate(std::optional<ZELKDate> date);

    /// A day less, or more, at each end; nothing where the range cannot be zoomed.
    void zoomIn();
    void zoomOut();
    void dayForward() { shiftDurationHours(0, 1, 0); }
    void dayBackward() { shiftDurationHours(0, -1, 0); }
    void monthForward() { shiftDurationHours(0, 0, 1); }
    void monthBackward() { shiftDurationHours(0, 0, -1); }
    /// Moves the start in the local calendar. Moved by days and months the range keeps its number of days,
    /// whatever hours they have; moved by hours it keeps its seconds, and is then taken to whole days again.
    void shiftDurationHours(int hours, int days, int months);
    void setStartingDay(std::optional<ZELKDate> date);
    void setEndingDay(std::optional<ZELKDate> date);
    /// Longer than its first day; shorter than 1068 days. Without a range nothing can be zoomed or moved.
    bool canZoomIn() const;
    bool canZoomOut() const;
    bool canForward() const;
    bool canBackward() const;
    bool validateMenuItem(Action action, int tag) const;
    bool validateToolbarItem(Action action) const { return validateAction(action); }
    bool validateAction(Action action) const;

    /// Writes "ZELKLWCDateRangeController.duration.date" (seconds since the reference date) and
    /// "….duration.interval" (seconds); restoring takes them only when both are above 0. A preset goes along
    /// as "….duration.preset": it is chosen anew if it still means those days, "everything" always, so that
    /// what was recorded since is shown.
    void saveState();
    void restoreState();

    /// The presets anew, and the range after them. The timer calls it just after each local midnight.
    void passingMidnightUpdate();
    const ZELKWallClockTimer &passingMidnightTimer() const { return m_passingMidnightTimer; }
    /// Tag t at index t - 1; empty before awakeFromNib(). The ninth is a placeholder. One oddity is meant:
    /// this month ends at its last day's 00:00:00 until it is set, so no other range is found to be the same.
    const std::vector<Range> &precalculatedDurations() const { return m_precalculatedDurations; }

Q_SIGNALS:
    /// Another range is held. Said once where setting one range led on to a preset's.
    void absoluteDurationChanged();
    /// The pop-up of the presets selects the item with this tag.
    void selectionTagChanged(int tag);

private:
    using Remembered = std::pair<ZELKLWCAbsoluteDuration, int>; ///< a range, and its tag

    void initPrecalculatedDurations();
    void initPrecalculatedWeeks(ZELKDate now, ZELKDate today);
    void setPreset(int tag, ZELKDate start, ZELKDate end);
    void bindSelectionTag();
    void schedulePassingMidnightTimer();
    void passMidnight();
    void normalise(ZELKLWCAbsoluteDuration &range) const;
    void setRange(const ZELKLWCAbsoluteDuration &range);
    void takeUp(const Remembered &remembered);
    bool stillMeans(const Remembered &remembered) const;
    bool isPreset(int tag) const;

    ZELKUserDefaults &m_defaults;
    Range m_absoluteDuration;
    int m_selectionTag = 0;
    std::vector<Range> m_precalculatedDurations;
    ZELKWallClockTimer m_passingMidnightTimer;
    std::optional<ZELKDate> m_distantPast;
    std::optional<ZELKDate> m_distantFuture;
    bool m_boundsAreProvisional = false;
    /// Restored while the bounds were provisional.
    std::optional<Remembered> m_restored;
};
