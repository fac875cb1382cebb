#pragma once

#include "ZELKDate.h"

#include <QString>

/// Calendar arithmetic in the zone of the current environment. Days of 23 and 25 hours count as days: adding
/// a day keeps the time of day; a time of day that a clock change skips moves on to the first one that
/// exists.
namespace ZELKCalendar {

/// 00:00:00 of the date's day (the day's first moment where midnight itself is skipped).
ZELKDate startOfDay(ZELKDate date);
/// 00:00:00 of the first day of the date's month.
ZELKDate startOfMonth(ZELKDate date);
/// Adds calendar fields, months first (a day past the month's end becomes its last), then days, then hours
/// and seconds; hours and seconds are elapsed time.
ZELKDate adding(ZELKDate date, int months, int days, int hours = 0, double seconds = 0.0);
/// As pickers and locales have it: the day that is shown beside the date's time of day, to the millisecond.
QDate day(ZELKDate date);
/// 0 for Sunday to 6 for Saturday.
int weekday(ZELKDate date);
int year(ZELKDate date);
/// 1 to 12.
int month(ZELKDate date);

/// Renders calendar-format letters with the locale's names: %A %a weekday, %B %b month, %d %e day
/// (zero-padded, space-padded), %H %I %M %S %p time, %m month number, %Y %y year, %j day of year, %z offset,
/// %Z zone name, %x %X %c the locale's date, time, both, %% a percent sign; other letters stand as they are.
QString format(ZELKDate date, const QString &calendarFormat);

} // namespace ZELKCalendar
