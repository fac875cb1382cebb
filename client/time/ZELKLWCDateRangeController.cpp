#include "ZELKLWCDateRangeController.h"

#include "ZELKAssertion.h"
#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"
#include "ZELKUserDefaults.h"

#include <QStringList>

#include <cmath>
#include <utility>

namespace {

/// Days from which on a range is zoomed out no further.
constexpr int longestZoom = 1068;
/// A day and a second, so that each firing falls after midnight.
constexpr double midnightInterval = 86401.0;

constexpr QLatin1String tagKey("dateRange");
constexpr QLatin1String startKey("ZELKLWCDateRangeController.duration.date");
constexpr QLatin1String lengthKey("ZELKLWCDateRangeController.duration.interval");
constexpr QLatin1String presetKey("ZELKLWCDateRangeController.duration.preset");

constexpr int everythingTag = 8;

ZELKDate dateOrFailure(std::optional<ZELKDate> date, int line)
{
    if (!date)
        ZELKAssertion::failParameter(QStringLiteral("client/ZELKLWCDateRangeController"), line, "aDate");
    return *date;
}

ZELKDate nextMidnight(ZELKDate date)
{
    return ZELKCalendar::startOfDay(ZELKCalendar::adding(ZELKCalendar::startOfDay(date), 0, 1));
}

/// From the first second of the date's day to its last: 86399 seconds, but for days of 23 and 25 hours.
double lengthOfDay(ZELKDate date)
{
    return nextMidnight(date).timeIntervalSinceDate(ZELKCalendar::startOfDay(date)) - 1.0;
}

/// Midnights between two moments. No clock change makes up for half a day.
int nightsBetween(ZELKDate from, ZELKDate to)
{
    constexpr double day = 86400.0;
    return int(std::lround(
        ZELKCalendar::startOfDay(to).timeIntervalSinceDate(ZELKCalendar::startOfDay(from)) / day));
}

/// A preset and the period that it stood for, in a form that the settings keep digit by digit.
QStringList presetMark(int tag, double start, double length)
{
    constexpr int digits = 17;
    return {QString::number(tag), QString::number(start, 'g', digits), QString::number(length, 'g', digits)};
}

} // namespace

ZELKLWCDateRangeController::ZELKLWCDateRangeController(ZELKUserDefaults &defaults, QObject *parent)
    : QObject(parent)
    , m_defaults(defaults)
{
    connect(&m_passingMidnightTimer, &ZELKWallClockTimer::fired, this,
            [this] { zelkGuard([this] { passMidnight(); }); });
}

void ZELKLWCDateRangeController::awakeFromNib()
{
    initPrecalculatedDurations();
    bindSelectionTag();
    schedulePassingMidnightTimer();
    const ZELKDate today = floorDate(ZELKEnvironment::current().clock->now());
    setDistantPastDistantFuture(today, ceilingDate(today));
    m_boundsAreProvisional = true;
}

void ZELKLWCDateRangeController::bindSelectionTag()
{
    const auto applyTag = [this] { setSelectionTag(m_defaults.integerForKey(tagKey)); };
    connect(&m_defaults, &ZELKUserDefaults::valueChanged, this, [applyTag](const QString &key) {
        if (key == tagKey)
            zelkGuard(applyTag);
    });
    applyTag();
}

void ZELKLWCDateRangeController::schedulePassingMidnightTimer()
{
    m_passingMidnightTimer.schedule(nextMidnight(ZELKEnvironment::current().clock->now()), midnightInterval);
}

void ZELKLWCDateRangeController::passMidnight()
{
    passingMidnightUpdate();
    // After a day of 23 or 25 hours the interval leads an hour past a midnight or short of one.
    constexpr double strayed = 1800.0;
    constexpr double halfDay = 43200.0;
    const ZELKDate next = m_passingMidnightTimer.nextFiring();
    const double intoDay = next.timeIntervalSinceDate(ZELKCalendar::startOfDay(next));
    if (intoDay >= strayed)
        m_passingMidnightTimer.schedule(
            intoDay < halfDay ? ZELKCalendar::startOfDay(next) : nextMidnight(next), midnightInterval);
}

void ZELKLWCDateRangeController::passingMidnightUpdate()
{
    initPrecalculatedDurations();
    synchronise();
}

void ZELKLWCDateRangeController::applicationDidNotify(ApplicationNotification notification)
{
    if (notification == ApplicationNotification::DidFinishLaunching)
        restoreState();
    else if (notification == ApplicationNotification::WillTerminate)
        saveState();
}

void ZELKLWCDateRangeController::setAbsoluteDuration(const Range &range)
{
    if (range == m_absoluteDuration)
        return;
    if (!range)
        floorDate(std::nullopt);
    m_restored.reset();
    m_absoluteDuration = range;
    const Range held = m_absoluteDuration; // `range` may be one of ours that changes meanwhile
    normalise(*held);
    updateSelectionTagWithAbsoluteDuration(held.get());
    if (m_absoluteDuration == held)
        Q_EMIT absoluteDurationChanged();
}

void ZELKLWCDateRangeController::normalise(ZELKLWCAbsoluteDuration &range) const
{
    range.setStartDate(floorDate(range.startDate()));
    range.setEndDate(ceilingDate(range.endDate()));
    if (range.duration() < lengthOfDay(range.startDate()))
        range.setEndDate(nextMidnight(range.startDate()));
    if (range.startDate() < distantPast())
        range.setStartDate(distantPast());
    if (range.endDate() > distantFuture())
        range.setEndDate(distantFuture());
}

void ZELKLWCDateRangeController::updateSelectionTagWithAbsoluteDuration(const ZELKLWCAbsoluteDuration *range)
{
    int tag = customTag;
    for (std::size_t i = 0; i < m_precalculatedDurations.size(); ++i)
        if (m_precalculatedDurations[i]->equal(range))
            tag = int(i) + 1;
    if (tag != m_selectionTag)
        setSelectionTag(tag);
}

void ZELKLWCDateRangeController::setSelectionTag(int tag)
{
    if (tag == m_selectionTag)
        return;
    if (isPreset(tag)) {
        m_selectionTag = tag;
        setAbsoluteDuration(m_precalculatedDurations[std::size_t(tag - 1)]);
    } else {
        m_selectionTag = customTag;
    }
    Q_EMIT selectionTagChanged(m_selectionTag);
}

bool ZELKLWCDateRangeController::isPreset(int tag) const
{
    return tag > 0 && std::size_t(tag) < m_precalculatedDurations.size();
}

void ZELKLWCDateRangeController::synchronise()
{
    if (isPreset(m_selectionTag)) {
        setAbsoluteDuration(m_precalculatedDurations[std::size_t(m_selectionTag - 1)]);
        return;
    }
    if (!m_absoluteDuration)
        return;
    int tag = 1;
    for (const Range &preset : m_precalculatedDurations) {
        if (preset->equal(m_absoluteDuration.get()))
            break;
        ++tag;
    }
    tag = qMin(tag, customTag);
    if (tag == m_selectionTag)
        return;
    m_selectionTag = tag;
    Q_EMIT selectionTagChanged(tag);
}

void ZELKLWCDateRangeController::takeSelectionTagFrom(int tag)
{
    setSelectionTag(tag);
    Q_EMIT selectionTagChanged(m_selectionTag);
}

bool ZELKLWCDateRangeController::canSelectTag(int tag) const
{
    if (!isPreset(tag))
        return tag == customTag;
    const ZELKLWCAbsoluteDuration &preset = *m_precalculatedDurations[std::size_t(tag - 1)];
    return !(preset.startDate() < distantPast() || preset.endDate() > distantFuture());
}

void ZELKLWCDateRangeController::setDistantPastDistantFuture(std::optional<ZELKDate> past,
                                                             std::optional<ZELKDate> future)
{
    const ZELKDate first = floorDate(past);
    const ZELKDate last = ceilingDate(future);
    m_distantPast = first;
    m_distantFuture = last;
    m_boundsAreProvisional = false;
    initPrecalculatedDurations();
    if (const auto restored = std::exchange(m_restored, std::nullopt))
        takeUp(*restored);
    synchronise();
}

ZELKDate ZELKLWCDateRangeController::floorDate(std::optional<ZELKDate> date)
{
    return ZELKCalendar::startOfDay(dateOrFailure(date, 659));
}

ZELKDate ZELKLWCDateRangeController::ceilingDate(std::optional<ZELKDate> date)
{
    return nextMidnight(dateOrFailure(date, 674)).addingTimeInterval(-1.0);
}

void ZELKLWCDateRangeController::setRange(const ZELKLWCAbsoluteDuration &range)
{
    setAbsoluteDuration(std::make_shared<ZELKLWCAbsoluteDuration>(range));
}

void ZELKLWCDateRangeController::zoomIn()
{
    if (!canZoomIn())
        return;
    setRange(ZELKLWCAbsoluteDuration::absoluteDurationFromDate(
        ZELKCalendar::adding(m_absoluteDuration->startDate(), 0, 1),
        ZELKCalendar::adding(m_absoluteDuration->endDate(), 0, -1)));
}

void ZELKLWCDateRangeController::zoomOut()
{
    if (!canZoomOut())
        return;
    setRange(ZELKLWCAbsoluteDuration::absoluteDurationFromDate(
        ZELKCalendar::adding(m_absoluteDuration->startDate(), 0, -1),
        ZELKCalendar::adding(m_absoluteDuration->endDate(), 0, 1)));
}

void ZELKLWCDateRangeController::shiftDurationHours(int hours, int days, int months)
{
    if (!m_absoluteDuration)
        return;
    const ZELKDate start = ZELKCalendar::adding(m_absoluteDuration->startDate(), months, days, hours);
    if (hours != 0)
        return setRange({start, m_absoluteDuration->duration()});
    const int nights = nightsBetween(m_absoluteDuration->startDate(), m_absoluteDuration->endDate());
    setRange(
        ZELKLWCAbsoluteDuration::absoluteDurationFromDate(start, ZELKCalendar::adding(start, 0, nights)));
}

void ZELKLWCDateRangeController::setStartingDay(std::optional<ZELKDate> date)
{
    const ZELKDate start = floorDate(date);
    const ZELKDate end = m_absoluteDuration ? m_absoluteDuration->endDate() : ceilingDate(date);
    setRange(ZELKLWCAbsoluteDuration::absoluteDurationFromDate(start, end));
}

void ZELKLWCDateRangeController::setEndingDay(std::optional<ZELKDate> date)
{
    const ZELKDate end = ceilingDate(date);
    const ZELKDate start = m_absoluteDuration ? m_absoluteDuration->startDate() : floorDate(date);
    setRange(ZELKLWCAbsoluteDuration::absoluteDurationFromDate(start, end));
}

bool ZELKLWCDateRangeController::canZoomIn() const
{
    return m_absoluteDuration &&
           m_absoluteDuration->duration() > lengthOfDay(m_absoluteDuration->startDate());
}

bool ZELKLWCDateRangeController::canZoomOut() const
{
    return m_absoluteDuration && m_absoluteDuration->endDate() <
                                     ZELKCalendar::adding(m_absoluteDuration->startDate(), 0, longestZoom);
}

bool ZELKLWCDateRangeController::canForward() const
{
    return m_absoluteDuration && m_absoluteDuration->endDate() < distantFuture();
}

bool ZELKLWCDateRangeController::canBackward() const
{
    return m_absoluteDuration && m_absoluteDuration->startDate() > distantPast();
}

bool ZELKLWCDateRangeController::validateMenuItem(Action action, int tag) const
{
    return action == Action::TakeSelectionTagFrom ? canSelectTag(tag) : validateAction(action);
}

bool ZELKLWCDateRangeController::validateAction(Action action) const
{
    switch (action) {
    case Action::ZoomIn:
        return canZoomIn();
    case Action::ZoomOut:
        return canZoomOut();
    case Action::DayForward:
    case Action::MonthForward:
        return canForward();
    case Action::DayBackward:
    case Action::MonthBackward:
        return canBackward();
    case Action::TakeSelectionTagFrom:
    case Action::Other:
        break;
    }
    return true;
}

void ZELKLWCDateRangeController::saveState()
{
    const ZELKLWCAbsoluteDuration range =
        m_absoluteDuration ? *m_absoluteDuration : ZELKLWCAbsoluteDuration();
    const double start = range.startDate().timeIntervalSinceReferenceDate();
    m_defaults.setValue(startKey, start);
    m_defaults.setValue(lengthKey, range.duration());
    m_defaults.setValue(presetKey, isPreset(m_selectionTag)
                                       ? presetMark(m_selectionTag, start, range.duration())
                                       : QVariant());
}

void ZELKLWCDateRangeController::restoreState()
{
    const double start = m_defaults.doubleForKey(startKey);
    const double length = m_defaults.doubleForKey(lengthKey);
    if (!(start > 0.0 && length > 0.0))
        return;
    const QStringList mark = m_defaults.value(presetKey).toStringList();
    const int tag = mark.value(0).toInt();
    const Remembered remembered{{ZELKDate(start), length},
                                mark == presetMark(tag, start, length) ? tag : customTag};
    if (!m_boundsAreProvisional)
        return takeUp(remembered);
    setRange(remembered.first);
    m_restored = remembered;
}

/// The preset anew where it still means the remembered days, which the bounds may have cut short then; else
/// the days.
void ZELKLWCDateRangeController::takeUp(const Remembered &remembered)
{
    if (stillMeans(remembered))
        setSelectionTag(remembered.second);
    else
        setRange(remembered.first);
}

bool ZELKLWCDateRangeController::stillMeans(const Remembered &remembered) const
{
    const auto &[range, tag] = remembered;
    if (!isPreset(tag))
        return false;
    const ZELKLWCAbsoluteDuration &preset = *m_precalculatedDurations[std::size_t(tag - 1)];
    return tag == everythingTag || (floorDate(preset.startDate()) <= range.startDate() &&
                                    range.endDate() <= ceilingDate(preset.endDate()));
}
