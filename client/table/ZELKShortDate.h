#pragma once

#include "ZELKDate.h"

#include <QLocale>
#include <QString>

/// Dates as lists and status lines show them: the locale's short form, but with seconds, which the short form
/// leaves out and which tell events of one minute apart.
namespace ZELKShortDate {

/// In the zone and locale of the current environment.
QString text(ZELKDate date);
/// The locale's short time with seconds behind the minutes, divided as hours and minutes are.
QString timeFormat(const QLocale &locale);

} // namespace ZELKShortDate
