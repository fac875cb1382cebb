#include "ZELKLWCDateRangeController.h"

#include "ZELKAssertion.h"
#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"
#include "ZELKUserDefaults.h"

#include <utility>

namespace {

/// A day from 00:00:00 to 23:59:59, in seconds.
constexpr double wholeDay = 86399.0;
/// 1068 days.
constexpr double longestZoom = 92275200.0;
/// A day and a second, so that each firing falls after midnight.
constexpr double midnightInterval = 86401.0;

constexpr QLatin1String tagKey("dateRange");
constexpr QLatin1String startKey("ZELKLWCDateRangeController.duration.date");
constexpr QLatin1String lengthKey("ZELKLWCDateRangeController.duration.interval");

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
    if (range.duration() < wholeDay)
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
        setRange(*restored);
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
    setRange({start, m_absoluteDuration->duration()});
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
    return m_absoluteDuration && m_absoluteDuration->duration() > wholeDay;
}

bool ZELKLWCDateRangeController::canZoomOut() const
{
    return m_absoluteDuration && m_absoluteDuration->duration() < longestZoom;
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
    m_defaults.setValue(startKey, range.startDate().timeIntervalSinceReferenceDate());
    m_defaults.setValue(lengthKey, range.duration());
}

void ZELKLWCDateRangeController::restoreState()
{
    const double start = m_defaults.doubleForKey(startKey);
    const double length = m_defaults.doubleForKey(lengthKey);
    if (!(start > 0.0 && length > 0.0))
        return;
    const ZELKLWCAbsoluteDuration remembered(ZELKDate(start), length);
    setRange(remembered);
    if (m_boundsAreProvisional)
        m_restored = remembered;
}
