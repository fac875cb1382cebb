#include "ZELKStatisticsWriter.h"

#include "ZELKAttributedString.h"
#include "ZELKCalendar.h"
#include "ZELKCommandLineText.h"
#include "ZELKDateFormatter.h"
#include "ZELKEntryJson.h"
#include "ZELKFormat.h"
#include "ZELKLWCLogEntrySelection.h"
#include "ZELKTextOutput.h"
#include "ZELKValue.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace {

using Costs = ZELKSleepCosts;

// MARK: text

QString plain(const QVariant &value)
{
    const QString text = value.userType() == qMetaTypeId<ZELKAttributedString>()
                             ? value.value<ZELKAttributedString>().string()
                             : ZELKValue::description(value);
    return ZELKTextOutput::safe(text).trimmed();
}

QString section(const QString &title, const ZELKDictionary &values)
{
    qsizetype width = 0;
    for (const QString &key : values.keys())
        width = std::max(width, ZELKTextOutput::safe(key).size());
    QString lines = QLatin1Char('\n') + ZELKTextOutput::safe(title) + QLatin1Char('\n');
    for (const auto &[key, value] : values)
        lines += QLatin1String("  ") + ZELKTextOutput::safe(key).leftJustified(width) + QLatin1String("  ") +
                 plain(value) + QLatin1Char('\n');
    return lines;
}

/// By its days where it has whole ones, else with its times.
QString title(const ZELKLWCAbsoluteDuration &period)
{
    using Style = ZELKDateFormatter::Style;
    const ZELKDate start = period.startDate();
    const ZELKDate behind = period.endDate().addingTimeInterval(1.0);
    if (start == ZELKCalendar::startOfDay(start) && behind == ZELKCalendar::startOfDay(behind))
        return period.periodDescription().simplified();
    const bool isOneDay = ZELKCalendar::startOfDay(start) == ZELKCalendar::startOfDay(period.endDate());
    const ZELKDateFormatter end(isOneDay ? Style::None : Style::Short, Style::Short);
    return ZELKFormat("%@ - %@", {ZELKDateFormatter(Style::Short, Style::Short).stringFromDate(start),
                                  end.stringFromDate(period.endDate())});
}

/// With all sleeps there are: here nobody waits for a panel.
ZELKDictionary valuesOf(const ZELKLWCLogEntrySelection &selection, const QString &key)
{
    if (key == ZELKLWCLogEntrySelection::sleepsKey && selection.showsSleeps())
        return selection.sleepCosts().infoDictionary(std::numeric_limits<std::size_t>::max());
    return selection.attributeForKey(key).value<ZELKDictionary>();
}

// MARK: JSON

QVariant variant(const ZELKDictionary &dictionary)
{
    return QVariant::fromValue(dictionary);
}

QVariant quotient(double dividend, double divisor)
{
    return divisor > 0.0 ? QVariant(dividend / divisor) : QVariant();
}

QVariant batteries(const std::vector<ZELKLWCBattery> &batteries)
{
    ZELKDictionary values;
    for (const ZELKLWCBattery &battery : batteries) {
        const ZELKChargeDelta &delta = battery.delta();
        values.insert(
            battery.name(),
            variant({{QStringLiteral("minimum"), battery.minimumCapacity()},
                     {QStringLiteral("average"), quotient(battery.totalCapacity(), battery.count())},
                     {QStringLiteral("maximum"), battery.maximumCapacity()},
                     {QStringLiteral("secondsPerPercent"), quotient(delta.timeInterval(), delta.delta())}}));
    }
    return variant(values);
}

QVariant variant(const std::optional<double> &number)
{
    return number ? QVariant(*number) : QVariant();
}

QVariant drain(const Costs::Drain &drain)
{
    return variant({{QStringLiteral("lost"), drain.points},
                    {QStringLiteral("seconds"), drain.seconds},
                    {QStringLiteral("percentPerHour"), variant(drain.percentPerHour())}});
}

QVariant word(Costs::Unknown unknown)
{
    switch (unknown) {
    case Costs::Unknown::No:
        return {};
    case Costs::Unknown::NoReading:
        return QStringLiteral("noReading");
    case Costs::Unknown::SeveralSleeps:
        return QStringLiteral("severalSleeps");
    case Costs::Unknown::Unrecorded:
        return QStringLiteral("unrecorded");
    case Costs::Unknown::Charger:
        return QStringLiteral("charger");
    }
    return {};
}

QVariant sleep(const Costs &costs, std::size_t index)
{
    const Costs::Sleep &sleep = costs.sleeps()[index];
    ZELKDictionary known;
    for (const Costs::Cost &cost : costs.costsOfSleep(index))
        known.insert(costs.batteries()[cost.battery].name,
                     variant({{QStringLiteral("lost"), cost.points},
                              {QStringLiteral("percentPerHour"), variant(costs.percentPerHour(cost))}}));
    return variant({{QStringLiteral("from"), QVariant::fromValue(sleep.start)},
                    {QStringLiteral("to"), QVariant::fromValue(sleep.end)},
                    {QStringLiteral("unknown"), word(sleep.unknown)},
                    {QStringLiteral("costs"), variant(known)}});
}

QVariant sleeps(const Costs &costs)
{
    ZELKDictionary sums;
    for (const Costs::Battery &battery : costs.batteries())
        sums.insert(battery.name, variant({{QStringLiteral("asleep"), drain(battery.asleep)},
                                           {QStringLiteral("awake"), drain(battery.awake)}}));
    QVariantList each;
    for (std::size_t i = 0; i < costs.sleeps().size(); ++i)
        each.append(sleep(costs, i));
    return variant({{QStringLiteral("count"), qulonglong(costs.sleeps().size())},
                    {QStringLiteral("unknown"), qulonglong(costs.unknownSleeps())},
                    {QStringLiteral("batteries"), variant(sums)},
                    {QStringLiteral("each"), each}});
}

ZELKLWCAbsoluteDuration periodOf(const ZELKLWCLogEntrySelection &selection)
{
    return selection.duration().value_or(ZELKLWCAbsoluteDuration());
}

} // namespace

void ZELKStatisticsWriter::writeText(const ZELKLWCLogEntrySelection &selection, ZELKTextOutput &output)
{
    const qsizetype count = selection.selectionCount();
    output.write(title(periodOf(selection)) + QLatin1Char('\n'));
    output.write((count == 1 ? ZELKCommandLineText("1 entry")
                             : ZELKFormat(ZELKCommandLineText("%lu entries"), {std::uint64_t(count)})) +
                 QLatin1Char('\n'));
    for (const QString &key : selection.attributes())
        output.write(section(key, valuesOf(selection, key)));
}

void ZELKStatisticsWriter::writeJson(const ZELKLWCLogEntrySelection &selection, ZELKTextOutput &output)
{
    const ZELKLWCAbsoluteDuration period = periodOf(selection);
    QByteArray json;
    ZELKEntryJson::appendValue(json,
                               variant({{QStringLiteral("from"), QVariant::fromValue(period.startDate())},
                                        {QStringLiteral("to"), QVariant::fromValue(period.endDate())},
                                        {QStringLiteral("count"), qlonglong(selection.selectionCount())},
                                        {QStringLiteral("usage"), variant(selection.summary())},
                                        {QStringLiteral("powerSource"), variant(selection.powerSources())},
                                        {QStringLiteral("batteries"), batteries(selection.batteries())},
                                        {QStringLiteral("sleeps"), sleeps(selection.sleepCosts())}}));
    json += '\n';
    output.write(std::string_view(json.constData(), std::size_t(json.size())));
}
