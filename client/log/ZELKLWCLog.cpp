#include "ZELKLWCLog.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKValue.h"

#include <algorithm>

using Id = ZELKStringPool::Id;

namespace {

ZELKLWCLog::EntryClasses defaultEntryClasses()
{
    return {{ZELKEventStartingMonitor, ZELKEntryKind::Daemon},
            {ZELKEventStoppingMonitor, ZELKEntryKind::Daemon},
            {ZELKEventPowerStateChanged, ZELKEntryKind::PowerStatus},
            {ZELKEventSystemWillNotSleep, ZELKEntryKind::IdleSleep},
            {ZELKEventCanSystemSleep, ZELKEntryKind::IdleSleep},
            {ZELKEventSystemWillSleep, ZELKEntryKind::PowerState},
            {ZELKEventSystemHasPoweredOn, ZELKEntryKind::PowerState},
            {ZELKEventStartup, ZELKEntryKind::PowerState},
            {ZELKEventAccountingShutDown, ZELKEntryKind::PowerState},
            {ZELKEventAccountingBoot, ZELKEntryKind::PowerState}};
}

constexpr std::string_view noProperties(ZELKEventNoProperties.data(), 4);

/// Digits with six decimals, as every date is written, exactly: both whole numbers fit a double, and one
/// division rounds correctly.
std::optional<ZELKDate> usualDate(std::string_view text)
{
    constexpr std::size_t decimals = 6;
    if (text.size() < decimals + 2 || text.size() > 16 || text[text.size() - decimals - 1] != '.')
        return std::nullopt;
    std::uint64_t millionths = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == text.size() - decimals - 1)
            continue;
        if (text[i] < '0' || text[i] > '9')
            return std::nullopt;
        millionths = millionths * 10 + std::uint64_t(text[i] - '0');
    }
    if (millionths >= 1ULL << 53)
        return std::nullopt;
    return ZELKDate(double(millionths) / 1e6);
}

/// The double value of a date's text; a number that is none would break every comparison and counts as 0.
ZELKDate dateOf(const QVariant &value)
{
    const double seconds = ZELKValue::doubleValue(value);
    return ZELKDate(seconds == seconds ? seconds : 0.0);
}

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

ZELKRawEvent rawEventOf(const ZELKRawEventView &event)
{
    return {{ZELKEventKeyDate, fromUtf8(event.date)},
            {ZELKEventKeyDescription, fromUtf8(event.description)},
            {ZELKEventKeyMonitor, fromUtf8(event.monitor)},
            {ZELKEventKeyProperties, fromUtf8(event.properties)}};
}

} // namespace

ZELKLWCLog::ZELKLWCLog(QObject *parent)
    : QObject(parent)
    , m_entryClasses(defaultEntryClasses())
    , m_arena(this)
    , m_propertyReader(m_arena.texts(), m_arena.properties())
{
}

ZELKLWCLog::~ZELKLWCLog() = default;

void ZELKLWCLog::awakeFromNib()
{
    connect(m_dateRange, &ZELKLWCDateRangeController::absoluteDurationChanged, this,
            [this] { zelkGuard([this] { updateVisibleEntries(); }); });
}

// MARK: taking in

/// Number of a text that is likely to be one of the few names that most events carry.
Id ZELKLWCLog::intern(std::string_view text)
{
    if (text.empty())
        return m_arena.texts().intern(text);
    Id &recent = m_recentTexts[(text.size() + std::size_t(text.back()) * 5) % m_recentTexts.size()];
    if (recent == ZELKStringPool::nil || m_arena.texts().view(recent) != text)
        recent = m_arena.texts().intern(text);
    return recent;
}

ZELKEntryKind ZELKLWCLog::kindOf(Id event)
{
    if (event >= m_kinds.size())
        m_kinds.resize(event + 1, -1);
    if (m_kinds[event] < 0)
        m_kinds[event] =
            std::int8_t(m_entryClasses.value(m_arena.texts().string(event), ZELKEntryKind::Plain));
    return ZELKEntryKind(m_kinds[event]);
}

ZELKLWCLogEntry *ZELKLWCLog::entryWithDate(ZELKDate date, const QString &event, const QString &monitor,
                                           const ZELKDictionary &properties)
{
    return m_arena.entryWithDate(m_entryClasses.value(event, ZELKEntryKind::Plain), date, event, monitor,
                                 properties);
}

void ZELKLWCLog::addExternalEntries(const QList<ZELKRawEvent> &events)
{
    beginExternalEntries();
    for (const ZELKRawEvent &event : events)
        addExternalEntry(event);
    endExternalEntries();
}

void ZELKLWCLog::beginExternalEntries()
{
    m_kinds.clear(); // the registry may be another one now
}

template <typename MakeRaw>
std::optional<ZELKPackedProperties::Ref> ZELKLWCLog::readProperties(std::string_view text, MakeRaw &&makeRaw)
{
    if (text == noProperties)
        return ZELKPackedProperties::empty;
    const ZELKPropertyTextReader::Result result = m_propertyReader.read(text);
    if (!result.properties && !result.error.isEmpty())
        ZELKConsole::log(ZELKFormat("Error unpacking event properties:%@ <%@>",
                                    {result.error, QVariant::fromValue<ZELKRawEvent>(makeRaw())}));
    return result.properties;
}

void ZELKLWCLog::addExternalEntry(const ZELKRawEventView &event)
{
    const std::optional<ZELKPackedProperties::Ref> properties =
        readProperties(event.properties, [&event] { return rawEventOf(event); });
    if (!properties)
        return;
    const std::optional<ZELKDate> date = usualDate(event.date);
    add(date ? *date : dateOf(fromUtf8(event.date)), intern(event.description), intern(event.monitor),
        *properties);
}

void ZELKLWCLog::addExternalEntry(const ZELKRawEvent &event)
{
    const QByteArray description = event.string(ZELKEventKeyDescription).toUtf8();
    const QByteArray monitor = event.string(ZELKEventKeyMonitor).toUtf8();
    const QByteArray text = event.string(ZELKEventKeyProperties).toUtf8();
    if (const auto properties = readProperties(viewOf(text), [&event] { return event; }))
        add(dateOf(event.value(ZELKEventKeyDate)), intern(viewOf(description)), intern(viewOf(monitor)),
            *properties);
}

void ZELKLWCLog::add(ZELKDate date, Id event, Id monitor, ZELKPackedProperties::Ref properties)
{
    const ZELKEntryKind kind = kindOf(event);
    const Id name = kind == ZELKEntryKind::PowerStatus
                        ? m_arena.properties().textId(properties, ZELKPackedProperties::Name)
                        : ZELKStringPool::nil;
    ZELKLWCLogEntry *entry = m_arena.make(m_arena.identityFor(kind, event, monitor, name), date, properties);
    if (entry->groupIndex() >= m_finalGroupEntries.size())
        m_finalGroupEntries.resize(m_arena.groupCount(), ZELKEntryArena::none);
    Handle &newest = m_finalGroupEntries[entry->groupIndex()];
    if (newest != ZELKEntryArena::none && m_arena.at(newest)->isLike(*entry))
        m_arena.at(newest)->mergeEntry(entry);
    else
        link(entry, newest);
    m_finalDate = date;
}

void ZELKLWCLog::link(ZELKLWCLogEntry *entry, Handle &newestOfGroup)
{
    ZELKLWCLogEntry *older = m_arena.at(newestOfGroup);
    entry->setContainer(this);
    entry->setPast(m_arena.at(m_pastEntry));
    entry->setNext(older);
    if (older)
        older->setPrevious(entry);
    newestOfGroup = entry->handle();
    m_pastEntry = entry->handle();
    m_ascending = m_ascending && entry->date() >= m_latestEntryDate;
    m_latestEntryDate = std::max(m_latestEntryDate, entry->date());
    m_entries.push_back(entry->handle());
}

void ZELKLWCLog::endExternalEntries()
{
    awakeNewEntries();
    if (!m_entries.empty())
        updateOuterLimits();
    updateVisibleEntries();
}

void ZELKLWCLog::awakeNewEntries()
{
    std::vector<std::pair<Id, Handle>> batteries; // few: a walk finds them sooner than a hash
    for (; m_firstNewEntry < m_entries.size(); ++m_firstNewEntry) {
        ZELKLWCLogEntry *entry = m_arena.at(m_entries[m_firstNewEntry]);
        entry->awakeFromLog();
        if (entry->kind() != ZELKEntryKind::PowerStatus)
            continue;
        const Id name = m_arena.properties().textId(entry->packedProperties(), ZELKPackedProperties::Name);
        const auto known = std::find_if(batteries.begin(), batteries.end(),
                                        [name](const auto &battery) { return battery.first == name; });
        if (known != batteries.end())
            known->second = entry->handle();
        else if (name != ZELKStringPool::nil)
            batteries.emplace_back(name, entry->handle());
    }
    for (const auto &[name, latest] : batteries) {
        if (!m_batteries.contains(name))
            m_batteryNames.append(m_arena.texts().string(name));
        m_batteries.insert(name, latest);
    }
}

void ZELKLWCLog::updateOuterLimits()
{
    if (!m_dateRange)
        return;
    m_dateRange->setDistantPastDistantFuture(
        ZELKLWCDateRangeController::floorDate(objectAtIndex(0)->date()),
        ZELKLWCDateRangeController::ceilingDate(pastEntry()->finalDate()));
}

// MARK: entries

QList<ZELKLWCLogEntry *> ZELKLWCLog::entriesIn(ZELKVisibleRange range) const
{
    QList<ZELKLWCLogEntry *> list;
    list.reserve(qsizetype(range.length));
    for (std::uint64_t i = range.location; i < range.end(); ++i)
        list.append(m_arena.at(m_entries[i]));
    return list;
}

ZELKLWCLogEntry *ZELKLWCLog::objectInVisibleEntriesAtIndex(std::uint64_t index) const
{
    return m_arena.at(m_entries[m_visibleRange.location + index]);
}

std::optional<std::uint64_t> ZELKLWCLog::indexOfEntry(const ZELKLWCLogEntry *entry) const
{
    if (!entry)
        return std::nullopt;
    // Handles count up in the order of arrival, and so do the entries.
    const auto found = std::lower_bound(m_entries.begin(), m_entries.end(), entry->handle());
    if (found == m_entries.end() || m_arena.at(*found) != entry)
        return std::nullopt;
    return std::uint64_t(found - m_entries.begin());
}

QHash<QString, ZELKLWCLogEntry *> ZELKLWCLog::finalGroupEntries() const
{
    QHash<QString, ZELKLWCLogEntry *> entries;
    for (std::uint32_t i = 0; i < m_finalGroupEntries.size(); ++i)
        if (m_finalGroupEntries[i] != ZELKEntryArena::none)
            entries.insert(m_arena.texts().string(m_arena.group(i)), m_arena.at(m_finalGroupEntries[i]));
    return entries;
}

QStringList ZELKLWCLog::groups() const
{
    QStringList names;
    for (std::uint32_t i = 0; i < m_finalGroupEntries.size(); ++i)
        if (m_finalGroupEntries[i] != ZELKEntryArena::none)
            names.append(m_arena.texts().string(m_arena.group(i)));
    return names;
}

ZELKLWCLogEntryPowerStatus *ZELKLWCLog::battery(const QString &name) const
{
    const Id id = m_arena.texts().find(std::string_view(name.toUtf8()));
    return static_cast<ZELKLWCLogEntryPowerStatus *>(m_arena.at(m_batteries.value(id, ZELKEntryArena::none)));
}

QString ZELKLWCLog::objectSpecifier() const
{
    return QStringLiteral("/org/zelk/lullwatch/database");
}

// MARK: visible entries

void ZELKLWCLog::updateVisibleEntries()
{
    ZELKVisibleRange range;
    if (m_dateRange && m_dateRange->absoluteDuration()) {
        const ZELKLWCAbsoluteDuration period = *m_dateRange->absoluteDuration();
        range = m_ascending ? rangeInOrder(period.startDate(), period.endDate())
                            : firstRun([&](ZELKDate date) { return period.contains(date); });
    }
    const ZELKVisibleRange before = m_visibleRange;
    Q_EMIT visibleEntriesWillChange(before, range);
    m_visibleRange = range;
    Q_EMIT visibleEntriesDidChange(before, range);
}

ZELKVisibleRange ZELKLWCLog::rangeInOrder(ZELKDate from, ZELKDate to) const
{
    const auto first = std::partition_point(m_entries.begin(), m_entries.end(),
                                            [&](Handle entry) { return m_arena.at(entry)->date() < from; });
    const auto last = std::partition_point(first, m_entries.end(),
                                           [&](Handle entry) { return m_arena.at(entry)->date() <= to; });
    if (first == last)
        return {};
    return {std::uint64_t(first - m_entries.begin()), std::uint64_t(last - first)};
}

template <typename Contains>
ZELKVisibleRange ZELKLWCLog::firstRun(Contains &&contains) const
{
    const auto inside = [&](Handle entry) { return contains(m_arena.at(entry)->date()); };
    const auto first = std::find_if(m_entries.begin(), m_entries.end(), inside);
    const auto last = std::find_if_not(first, m_entries.end(), inside);
    if (first == last)
        return {};
    return {std::uint64_t(first - m_entries.begin()), std::uint64_t(last - first)};
}
