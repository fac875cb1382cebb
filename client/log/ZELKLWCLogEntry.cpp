#include "ZELKLWCLogEntry.h"

#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKLWCGroupEnumerator.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryEnumerator.h"
#include "ZELKValue.h"

namespace {

constexpr double repeatSeconds = 5.0;

} // namespace

// MARK: class operations

QString ZELKLWCLogEntry::localizedStringForKey(const QString &key, const QString &value, const QString &table)
{
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(key, value, table);
}

QString ZELKLWCLogEntry::localizedStringForMonitor(const QString &key, const QString &value)
{
    return localizedStringForKey(key, value, QStringLiteral("Monitor"));
}

QString ZELKLWCLogEntry::localizedStringForSummary(const QString &key, const QString &value)
{
    return localizedStringForKey(key, value, QStringLiteral("Summary"));
}

QString ZELKLWCLogEntry::general(QLatin1String key)
{
    return localizedStringForKey(key, key, QStringLiteral("General"));
}

ZELKLWCLogEntry *ZELKLWCLogEntry::pairAtTimeOfEntry(ZELKLWCLogEntry *entry)
{
    while (entry && entry->pairRepresentsId() == ZELKStringPool::nil)
        entry = entry->past();
    return entry;
}

QString ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(ZELKLWCLogEntry *entry)
{
    const ZELKLWCLogEntry *pair = pairAtTimeOfEntry(entry);
    return pair ? pair->pairRepresents() : QString(ZELKStateAwake);
}

QString ZELKLWCLogEntry::pairRepresentsAtDate(ZELKDate date, ZELKLWCLogEntry *entry)
{
    const ZELKLWCLogEntry *pair = pairAtTimeOfEntry(entry);
    if (pair && pair->after(date)) {
        pair = pair->next();
        return pair ? pair->pairRepresents() : QString(ZELKStateAwake);
    }
    return pair ? pair->pairRepresents() : QString(ZELKStateAwake);
}

QString ZELKLWCLogEntry::powerSourceAtTimeOfEntry(ZELKLWCLogEntry *entry)
{
    for (; entry; entry = entry->past())
        if (entry->packed().contains(entry->packedProperties(), ZELKPackedProperties::PowerSourceState))
            return ZELKValue::description(
                entry->packed().value(entry->packedProperties(), ZELKPackedProperties::PowerSourceState));
    return ZELKPowerSourceUnknown;
}

// MARK: life

ZELKLWCLogEntry *ZELKLWCLogEntry::copy() const
{
    const Id name = packed().textId(packedProperties(), ZELKPackedProperties::Name);
    ZELKLWCLogEntry *made = arena().make(
        arena().identityFor(kind(), identity().event, identity().monitor, name), date(), packedProperties());
    made->copyLinks(*this);
    for (const ZELKLWCLogEntry *duplicate : duplicates())
        made->appendDuplicate(*duplicate);
    made->awakeFromLog();
    return made;
}

void ZELKLWCLogEntry::awakeFromLog()
{
    initAttributes();
}

void ZELKLWCLogEntry::initAttributes()
{
    setAwake();
    if (duplicateList())
        arena().duplicateList(duplicateList()).countAtAwakening =
            arena().duplicateList(duplicateList()).count;
    const auto set = arena().attributes().find(handle());
    if (set != arena().attributes().end())
        buildAttributes(*set);
}

// MARK: values

void ZELKLWCLogEntry::setSummary(const QString &summary)
{
    storeSummary(arena().texts().intern(summary));
}

ZELKLWCLogEntry::Id ZELKLWCLogEntry::summaryId() const
{
    if (storedSummary() != ZELKStringPool::nil)
        return storedSummary();
    if (!isAwake())
        return identity().eventText;
    storeSummary(arena().texts().intern(composeSummary()));
    return storedSummary();
}

QString ZELKLWCLogEntry::composeSummary() const
{
    return text(identity().eventText);
}

// MARK: chains

ZELKLWCLogEntryEnumerator ZELKLWCLogEntry::pastEnumerator()
{
    return ZELKLWCLogEntryEnumerator(this);
}

ZELKLWCLogEntry *ZELKLWCLogEntry::pastEntryWithEvent(const QString &event) const
{
    const Id wanted = arena().texts().find(std::string_view(event.toUtf8()));
    ZELKLWCLogEntry *entry = wanted == ZELKStringPool::nil ? nullptr : past();
    while (entry && entry->eventId() != wanted)
        entry = entry->past();
    return entry;
}

double ZELKLWCLogEntry::pairTimeInterval() const
{
    return pair() ? date().timeIntervalSinceDate(pair()->date()) : 0.0;
}

ZELKLWCGroupEnumerator ZELKLWCLogEntry::futureGroupEnumerator()
{
    return {this, false};
}

ZELKLWCGroupEnumerator ZELKLWCLogEntry::pastGroupEnumerator()
{
    return {this, true};
}

ZELKLWCLogEntry *ZELKLWCLogEntry::findGroupEntryWithEvent(const QString &event,
                                                          ZELKLWCGroupEnumerator enumerator)
{
    ZELKLWCLogEntry *entry = enumerator.nextObject();
    while (entry && entry->event() != event)
        entry = enumerator.nextObject();
    return entry;
}

ZELKLWCLogEntry *ZELKLWCLogEntry::pastGroupEntryWithEvent(const QString &event)
{
    return findGroupEntryWithEvent(event, pastGroupEnumerator());
}

ZELKLWCLogEntry *ZELKLWCLogEntry::futureGroupEntryWithEvent(const QString &event)
{
    return findGroupEntryWithEvent(event, futureGroupEnumerator());
}

// MARK: duplicates

bool ZELKLWCLogEntry::isLike(const ZELKLWCLogEntry &) const
{
    return false;
}

bool ZELKLWCLogEntry::isRepeatOf(const ZELKLWCLogEntry &other) const
{
    return other.kind() == kind() && other.eventId() == eventId() &&
           other.date().timeIntervalSinceDate(date()) < repeatSeconds;
}

void ZELKLWCLogEntry::mergeEntry(ZELKLWCLogEntry *other)
{
    appendDuplicate(*other);
    other->setContainerHandle(handle());
}

QList<ZELKLWCLogEntry *> ZELKLWCLogEntry::duplicates() const
{
    QList<ZELKLWCLogEntry *> list;
    for (auto link = arena().duplicateList(duplicateList()).first; link;
         link = arena().duplicateLink(link).next)
        list.append(arena().at(arena().duplicateLink(link).entry));
    return list;
}

ZELKDate ZELKLWCLogEntry::finalDate() const
{
    const auto last = arena().duplicateList(duplicateList()).last;
    return last ? arena().at(arena().duplicateLink(last).entry)->date() : date();
}

// MARK: attributes

void ZELKLWCLogEntry::buildAttributes(ZELKEntryArena::Attributes &attributes) const
{
    const ZELKEntryArena::DuplicateList &list = arena().duplicateList(duplicateList());
    if (list.countAtAwakening > 0) {
        QVariantList dates;
        auto link = list.first;
        for (std::uint32_t i = 0; i < list.countAtAwakening; ++i, link = arena().duplicateLink(link).next)
            dates.append(QVariant::fromValue(arena().at(arena().duplicateLink(link).entry)->date()));
        attributes.set(general(QLatin1String("Duplicates")), dates);
    }
    const QVariant processes = packed().value(packedProperties(), ZELKPackedProperties::Processes);
    if (processes.isValid())
        attributes.set(ZELKPropertyProcesses, processes);
}

ZELKEntryArena::Attributes ZELKLWCLogEntry::builtAttributes() const
{
    const auto set = arena().attributes().constFind(handle());
    if (set != arena().attributes().constEnd())
        return *set;
    ZELKEntryArena::Attributes attributes;
    if (isAwake())
        buildAttributes(attributes);
    return attributes;
}

QStringList ZELKLWCLogEntry::attributes() const
{
    return builtAttributes().keys;
}

void ZELKLWCLogEntry::setAttributes(const QStringList &keys)
{
    arena().attributes().insert(handle(), {keys, attributeValues()});
}

ZELKDictionary ZELKLWCLogEntry::attributeValues() const
{
    return builtAttributes().values;
}

void ZELKLWCLogEntry::setAttributeValues(const ZELKDictionary &values)
{
    arena().attributes().insert(handle(), {attributes(), values});
}

void ZELKLWCLogEntry::setAttributeValue(const QVariant &value, const QString &key)
{
    ZELKEntryArena::Attributes attributes = builtAttributes();
    attributes.set(key, value);
    arena().attributes().insert(handle(), attributes);
}

// MARK: texts

QString ZELKLWCLogEntry::shortDescription() const
{
    return componentsAsStringArray().join(QLatin1String("; "));
}

QStringList ZELKLWCLogEntry::componentsAsStringArray() const
{
    return {date().description(), summary()};
}

// MARK: scripting

QString ZELKLWCLogEntry::objectSpecifier() const
{
    if (containerHandle() == heldByLog) {
        const auto index = arena().log() ? arena().log()->indexOfEntry(this) : std::nullopt;
        return index ? ZELKFormat("%@/entries/%lu", {arena().log()->objectSpecifier(), *index}) : QString();
    }
    const ZELKLWCLogEntry *holder = arena().at(containerHandle());
    const qsizetype index = holder ? holder->duplicates().indexOf(this) : -1;
    const QString holderPath = index < 0 ? QString() : holder->objectSpecifier();
    return holderPath.isEmpty() ? QString() : ZELKFormat("%@/duplicates/%ld", {holderPath, index});
}

bool ZELKLWCLogEntry::visible() const
{
    if (containerHandle() == heldByLog) {
        const auto index = arena().log() ? arena().log()->indexOfEntry(this) : std::nullopt;
        return index && arena().log()->visibleRange().contains(*index);
    }
    const ZELKLWCLogEntry *holder = arena().at(containerHandle());
    return holder && holder->visible();
}

ZELKDictionary ZELKLWCLogEntry::scriptingProperties() const
{
    return {{QStringLiteral("summary"), summary()},
            {QStringLiteral("monitor"), monitor()},
            {QStringLiteral("group"), group()},
            {QStringLiteral("date"), QVariant::fromValue(date())}};
}
