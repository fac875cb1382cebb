#include "ZELKToldTimes.h"

#include "ZELKEventVocabulary.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace {

bool is(std::string_view text, QLatin1String name)
{
    return text == std::string_view(name.data(), std::size_t(name.size()));
}

double secondsIn(std::string_view date)
{
    double seconds = 0.0;
    std::from_chars(date.data(), date.data() + date.size(), seconds);
    return seconds;
}

} // namespace

ZELKToldTimes::ZELKToldTimes(Reader reader)
    : m_reader(std::move(reader))
{
}

void ZELKToldTimes::setUntil(std::optional<ZELKDate> until)
{
    if (until == m_until)
        return;
    m_until = until;
    m_periods.reset();
}

bool ZELKToldTimes::hold(const ZELKRawEventView &event)
{
    if (!m_until || !(is(event.monitor, ZELKMonitorPowerEvents) || is(event.monitor, ZELKMonitorPowerSource)))
        return false;
    const double date = secondsIn(event.date);
    if (date > m_until->timeIntervalSinceReferenceDate())
        return false;
    if (!m_periods)
        read();
    return std::any_of(m_periods->begin(), m_periods->end(),
                       [date](const Period &period) { return period.begin <= date && date <= period.end; });
}

/// An agent that died without a word ends with its successor; of two that begin without an end between, it is
/// not known for how long the first one lived.
void ZELKToldTimes::read()
{
    m_periods.emplace();
    std::optional<double> begin;
    m_reader(*m_until, [&](const ZELKRawEventView &event) {
        if (!is(event.monitor, ZELKMonitorLullwatch))
            return;
        if (is(event.description, ZELKEventStartingMonitor)) {
            begin = secondsIn(event.date);
        } else if (begin) {
            m_periods->push_back({*begin, secondsIn(event.date)});
            begin.reset();
        }
    });
    if (begin)
        m_periods->push_back({*begin, m_until->timeIntervalSinceReferenceDate()});
}
