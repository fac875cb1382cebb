#include "ZELKShortDate.h"

#include "ZELKEnvironment.h"

#include <QDateTime>

QString ZELKShortDate::timeFormat(const QLocale &locale)
{
    QString format = locale.timeFormat(QLocale::ShortFormat);
    const qsizetype minutes = format.indexOf(QLatin1String("mm"));
    if (minutes < 0 || format.contains(QLatin1Char('s')))
        return format;
    const QChar divider =
        minutes > 0 && !format.at(minutes - 1).isLetter() ? format.at(minutes - 1) : QLatin1Char(':');
    return format.insert(minutes + 2, divider + QStringLiteral("ss"));
}

QString ZELKShortDate::text(ZELKDate date)
{
    const ZELKEnvironment &environment = ZELKEnvironment::current();
    const QDateTime moment = date.toDateTime(environment.zone);
    const QLocale &locale = environment.locale;
    return locale.toString(moment.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
           locale.toString(moment.time(), timeFormat(locale));
}
