#include "ZELKDate.h"

#include "ZELKEnvironment.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr qint64 millisecondsFrom1970 = qint64(ZELKDate::secondsFrom1970) * 1000;

/// Downwards, so that the last half millisecond of a day stays in its day; the allowance is for whole
/// milliseconds that a double does not hit exactly.
qint64 wholeMilliseconds(double seconds)
{
    constexpr double allowance = 0.02;
    return qint64(std::floor(seconds * 1000.0 + allowance));
}

double withinBounds(double seconds)
{
    const double first = ZELKDate::distantPast().timeIntervalSinceReferenceDate();
    const double last = ZELKDate::distantFuture().timeIntervalSinceReferenceDate();
    return std::isnan(seconds) ? first : std::clamp(seconds, first, last);
}

} // namespace

ZELKDate ZELKDate::fromDateTime(const QDateTime &moment)
{
    const qint64 lowest = std::numeric_limits<qint64>::min() + millisecondsFrom1970;
    return ZELKDate(double(std::max(moment.toMSecsSinceEpoch(), lowest) - millisecondsFrom1970) / 1000.0);
}

QDateTime ZELKDate::toDateTime(const QTimeZone &zone) const
{
    const qint64 milliseconds = wholeMilliseconds(withinBounds(m_seconds)) + millisecondsFrom1970;
    return QDateTime::fromMSecsSinceEpoch(milliseconds, zone.isValid() ? zone : QTimeZone::utc());
}

QString ZELKDate::description() const
{
    const QDateTime local = toDateTime(ZELKEnvironment::current().zone);
    const QDate date = local.date();
    const QTime time = local.time();
    const int offset = local.offsetFromUtc();
    const int minutes = std::abs(offset) / 60;
    return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d %c%02d%02d", date.year(), date.month(),
                             date.day(), time.hour(), time.minute(), time.second(), offset < 0 ? '-' : '+',
                             minutes / 60, minutes % 60);
}
