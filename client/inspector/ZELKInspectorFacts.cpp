#include "ZELKInspectorFacts.h"

#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKInspectorCell.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKLWCLogEntrySelection.h"
#include "ZELKLWCPresentationAssistant.h"
#include "ZELKShortDate.h"

namespace {

QString text(const char *key)
{
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(
        QString::fromLatin1(key), {}, QStringLiteral("ZELKLWCInspectorController"));
}

QString number(qsizetype count)
{
    return ZELKEnvironment::current().locale.toString(qlonglong(count));
}

ZELKAttributedString headline(const QString &words)
{
    ZELKTextAttributes attributes = ZELKLWCPresentationAssistant::primaryAttributes();
    attributes.bold = true;
    return ZELKAttributedString(ZELKInspectorCell::ofValue(words).text.string(), attributes);
}

QString general(const QString &word)
{
    return ZELKLWCLogEntry::localizedStringForKey(word, word, QStringLiteral("General"));
}

/// Short enough for one line.
QString dayAndTime(ZELKDate date)
{
    const QString weekday =
        ZELKEnvironment::current().locale.dayName(ZELKCalendar::day(date).dayOfWeek(), QLocale::ShortFormat);
    return ZELKFormat(text("%@ %@"), {weekday, ZELKShortDate::text(date)});
}

/// The state that the partner began, or what the partner is.
QString sincePair(const ZELKLWCLogEntry &pair)
{
    const QString state = pair.pairRepresents();
    return ZELKFormat(text("%@ since %@"),
                      {state.isEmpty() ? pair.summary() : general(state), ZELKShortDate::text(pair.date())});
}

} // namespace

QString ZELKInspectorFacts::day(ZELKDate date)
{
    return ZELKEnvironment::current().locale.toString(ZELKCalendar::day(date), QLocale::LongFormat);
}

QString ZELKInspectorFacts::time(ZELKDate date)
{
    const ZELKEnvironment &environment = ZELKEnvironment::current();
    return environment.locale.toString(date.toDateTime(environment.zone).time(),
                                       ZELKShortDate::timeFormat(environment.locale));
}

ZELKAttributedString ZELKInspectorFacts::titleOf(const ZELKLWCLogEntry &entry)
{
    return headline(entry.summary());
}

ZELKAttributedString ZELKInspectorFacts::titleOf(const ZELKLWCLogEntrySelection &selection)
{
    return headline(ZELKFormat(text("%@ entries"), {number(selection.selectionCount())}));
}

ZELKDictionary ZELKInspectorFacts::ofEntry(const ZELKLWCLogEntry &entry)
{
    ZELKDictionary facts;
    facts.insert(text("Date"), day(entry.date()));
    facts.insert(text("Time"), time(entry.date()));
    if (const qsizetype duplicates = entry.duplicates().size()) {
        facts.insert(text("Repeated"),
                     duplicates == 1 ? text("once") : ZELKFormat(text("%@ times"), {number(duplicates)}));
        facts.insert(text("Last"), dayAndTime(entry.finalDate()));
    }
    if (const ZELKLWCLogEntry *pair = entry.pair())
        facts.insert(text("Before"), sincePair(*pair));
    if (!entry.pairRepresents().isEmpty())
        facts.insert(text("From then on"), general(entry.pairRepresents()));
    if (!entry.monitor().isEmpty())
        facts.insert(text("Reported by"), entry.monitor());
    return facts;
}

ZELKDictionary ZELKInspectorFacts::ofSelection(const ZELKLWCLogEntrySelection &selection)
{
    ZELKDictionary facts;
    if (!selection.duration())
        return facts;
    facts.insert(text("From"), dayAndTime(selection.duration()->startDate()));
    facts.insert(text("To"), dayAndTime(selection.duration()->endDate()));
    facts.insert(text("Length"), selection.duration()->longStringValue());
    return facts;
}
