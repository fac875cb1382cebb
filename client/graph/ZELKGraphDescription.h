#pragma once

#include <QString>

class ZELKLWCDateRangeController;
class ZELKLWCLog;

namespace ZELKGraphDescription {

/// What the graph shows, for those who do not see it: the period, how many entries it has, how often and for
/// how long it has blocks of each state, and the levels with which each battery comes into the period and
/// leaves it. Makes a display list of its own, which is work for a large log. Empty without a range.
QString description(const ZELKLWCLog &log, const ZELKLWCDateRangeController &dateRange);

} // namespace ZELKGraphDescription
