#include "ZELKDateFormatter.h"

#include "ZELKEnvironment.h"

QString ZELKDateFormatter::stringFromDate(ZELKDate date) const
{
    const ZELKEnvironment &environment = ZELKEnvironment::current();
    const QDateTime moment = date.toDateTime(environment.zone);
    QString text;
    if (m_date == Style::Short)
        text = environment.locale.toString(moment.date(), QLocale::ShortFormat);
    if (m_time == Style::None)
        return text;
    const QString time = environment.locale.toString(moment.time(), QLocale::ShortFormat);
    return text.isEmpty() ? time : text + QLatin1Char(' ') + time;
}
