#include "ZELKLWCDuration.h"

#include "ZELKEnvironment.h"
#include "ZELKFormat.h"

#include <QStringList>

#include <cmath>
#include <limits>

namespace {

QString localised(const QString &key, const QString &value)
{
    static const QString table = QStringLiteral("Durations");
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(key, value, table);
}

qint64 wholeSeconds(double seconds)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(seconds))
        return 0;
    if (seconds >= limit)
        return std::numeric_limits<qint64>::max();
    return seconds < -limit ? std::numeric_limits<qint64>::min() : qint64(seconds);
}

/// All of one sign; the counts that overflow 32 bits wrap when they are spelled.
struct Components
{
    explicit Components(qint64 total)
        : days(total / 3600 / 24)
        , hours(total / 3600 - 24 * days)
        , minutes(total / 60 - 60 * (total / 3600))
        , seconds(total - 60 * (total / 60))
    {
    }

    bool showMinutes() const { return minutes != 0 || (seconds != 0 && hours != 0); }
    bool showSeconds() const { return seconds != 0 || (days == 0 && hours == 0 && minutes == 0); }

    qint64 days;
    qint64 hours;
    qint64 minutes;
    qint64 seconds;
};

} // namespace

QString ZELKLWCDuration::shortStringFromDuration(double seconds)
{
    return stringFromDuration(seconds, QStringLiteral("d"), QStringLiteral("h"), QStringLiteral("m"),
                              QStringLiteral("s"), QStringLiteral("shortdivider"),
                              QStringLiteral("shortformat"));
}

QString ZELKLWCDuration::longStringFromDuration(double seconds)
{
    return stringFromDuration(seconds, QStringLiteral("day"), QStringLiteral("hour"),
                              QStringLiteral("minute"), QStringLiteral("second"),
                              QStringLiteral("longdivider"), QStringLiteral("longformat"));
}

QString ZELKLWCDuration::stringFromDuration(double seconds, const QString &dayKey, const QString &hourKey,
                                            const QString &minuteKey, const QString &secondKey,
                                            const QString &dividerKey, const QString &formatKey)
{
    const Components components(wholeSeconds(seconds));
    const QString format = localised(formatKey, formatKey);
    QStringList texts;
    const auto append = [&](bool shown, qint64 count, const QString &unitKey) {
        if (shown)
            texts.append(stringFor(qint32(count), unitKey, format));
    };
    append(components.days != 0, components.days, dayKey);
    append(components.hours != 0, components.hours, hourKey);
    append(components.showMinutes(), components.minutes, minuteKey);
    append(components.showSeconds(), components.seconds, secondKey);
    if (texts.size() == 1)
        return texts.first();
    return texts.join(localised(dividerKey, QStringLiteral(" ")));
}

QString ZELKLWCDuration::stringFor(int count, const QString &unitKey, const QString &localisedFormat)
{
    const QString key = count == 1 ? unitKey : unitKey + QLatin1Char('s');
    return ZELKFormat(localisedFormat, {count, localised(key, key)});
}
