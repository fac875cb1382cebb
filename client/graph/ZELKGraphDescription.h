#pragma once

#include <QString>

class ZELKLWCDateRangeController;
class ZELKLWCLog;

namespace ZELKGraphDescription {

/// What the graph shows, for those who do not see it: the period, how many entries it has, and how often each
/// state that has blocks ended in it. Looks at every visible entry. Empty without a range.
QString description(const ZELKLWCLog &log, const ZELKLWCDateRangeController &dateRange);

} // namespace ZELKGraphDescription
