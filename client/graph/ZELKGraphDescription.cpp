#include "ZELKGraphDescription.h"

#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKGraphColours.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"

namespace {

QString text(const char *topic)
{
    const QString table = QStringLiteral("ZELKLWCEntriesView");
    const QString key = table + QLatin1Char('.') + QLatin1String(topic);
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(key, {}, table);
}

} // namespace

QString ZELKGraphDescription::description(const ZELKLWCLog &log, const ZELKLWCDateRangeController &dateRange)
{
    if (!dateRange.absoluteDuration())
        return {};
    const QStringList words = ZELKGraphColours::colouredStates();
    QList<int> times(words.size());
    for (std::uint64_t i = 0; i < log.countOfVisibleEntries(); ++i) {
        const ZELKLWCLogEntry *opening = log.objectInVisibleEntriesAtIndex(i)->pair();
        const qsizetype word = opening ? words.indexOf(opening->pairRepresents()) : -1;
        if (word >= 0)
            ++times[word];
    }
    const int entries = int(log.countOfVisibleEntries());
    QStringList parts{dateRange.absoluteDuration()->periodDescription(),
                      ZELKFormat(text(entries == 1 ? "entry" : "entries"), {entries})};
    for (qsizetype i = 0; i < words.size(); ++i)
        if (times.at(i) > 0)
            parts.append(ZELKFormat(text(times.at(i) == 1 ? "once" : "times"), {words.at(i), times.at(i)}));
    return parts.join(QStringLiteral("; "));
}
