#pragma once

#include "ZELKDate.h"
#include "ZELKEntryArena.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKLWCLogObjectEnumerator.h"
#include "ZELKPropertyTextReader.h"
#include "ZELKRawEvent.h"
#include "ZELKVisibleRange.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>

#include <array>
#include <limits>
#include <optional>
#include <vector>

class ZELKLWCDateRangeController;
class ZELKLWCLogEntryPowerStatus;

/// The one collection of log entries, in the order in which their events arrived. It takes raw events in,
/// merges duplicates, links and awakes the rest, keeps the date range's outer limits on whole days around its
/// entries, and knows which run of entries lies in the chosen range. It only grows.
class ZELKLWCLog : public QObject
{
    Q_OBJECT

public:
    /// The index that says "none": the largest signed 64-bit number.
    static constexpr std::int64_t notFound = std::numeric_limits<std::int64_t>::max();
    using EntryClasses = QHash<QString, ZELKEntryKind>;

    explicit ZELKLWCLog(QObject *parent = nullptr);
    ~ZELKLWCLog() override;

    /// The chosen date range; not owned. Connect it before awakeFromNib().
    ZELKLWCDateRangeController *dateRange() const { return m_dateRange; }
    void setDateRange(ZELKLWCDateRangeController *dateRange) { m_dateRange = dateRange; }
    /// From here on the visible entries follow the date range.
    void awakeFromNib();

    /// Which kind an event becomes; others become plain entries.
    const EntryClasses &entryClasses() const { return m_entryClasses; }
    void setEntryClasses(const EntryClasses &classes) { m_entryClasses = classes; }
    /// An entry of the registry's kind, not linked.
    ZELKLWCLogEntry *entryWithDate(ZELKDate date, const QString &event, const QString &monitor,
                                   const ZELKDictionary &properties);

    /// Takes in raw events, in ascending date order and newer than what is there. An event whose properties
    /// cannot be read is dropped with a console line. All are linked before the first of them awakes.
    void addExternalEntries(const QList<ZELKRawEvent> &events);

    /// The same as one addExternalEntries() for events that come one by one: everything between begin and end
    /// is one batch.
    void beginExternalEntries();
    void addExternalEntry(const ZELKRawEventView &event);
    void addExternalEntry(const ZELKRawEvent &event);
    void endExternalEntries();

    int count() const { return int(m_entries.size()); }
    ZELKLWCLogEntry *objectAtIndex(int index) const { return m_arena.at(m_entries[std::size_t(index)]); }
    ZELKLWCLogObjectEnumerator objectEnumerator() const { return ZELKLWCLogObjectEnumerator(*this); }
    /// All entries; also what scripting addresses by index.
    QList<ZELKLWCLogEntry *> entry() const { return entriesIn({0, m_entries.size()}); }
    /// Position of an entry by identity; nothing for a duplicate or a foreign one.
    std::optional<std::uint64_t> indexOfEntry(const ZELKLWCLogEntry *entry) const;

    ZELKVisibleRange visibleRange() const { return m_visibleRange; }
    void updateVisibleEntries();
    std::uint64_t countOfVisibleEntries() const { return m_visibleRange.length; }
    ZELKLWCLogEntry *objectInVisibleEntriesAtIndex(std::uint64_t index) const;
    QList<ZELKLWCLogEntry *> visibleEntriesArray() const { return entriesIn(m_visibleRange); }

    /// Date of the last event received, merged or not; distant past at first.
    ZELKDate finalDate() const { return m_finalDate; }
    ZELKLWCLogEntry *pastEntry() const { return m_arena.at(m_pastEntry); }
    /// The newest entry of each group, by the group's name.
    QHash<QString, ZELKLWCLogEntry *> finalGroupEntries() const;
    QStringList groups() const;

    bool supportsBatteries() const { return !m_batteryNames.isEmpty(); }
    /// Names of the batteries, as they were first seen.
    QStringList batteryEnumerator() const { return m_batteryNames; }
    /// The latest reading of a battery; null for an unknown one.
    ZELKLWCLogEntryPowerStatus *battery(const QString &name) const;

    /// Index of the first entry after the date (not before it: callers rely on that), or the last index when
    /// none is; notFound when the log is empty or begins at or after the date.
    std::int64_t entryBeforeDate(ZELKDate date) const;
    /// From the index on, the first entry that opens a state other than the word; null when there is none.
    ZELKLWCLogEntry *pairRepresentsChangesNextAfter(const QString &word, std::int64_t index) const;
    ZELKLWCLogEntry *nextPairRepresentsAfter(std::int64_t index) const;
    ZELKLWCLogEntryPowerStatus *powerEventForBatteryBefore(const QString &name,
                                                           const ZELKLWCLogEntry *entry) const;
    ZELKLWCLogEntryPowerStatus *powerEventForBatteryAfter(const QString &name,
                                                          const ZELKLWCLogEntry *entry) const;
    /// Percentage on the straight line through two readings; not limited to 0…100 nor to the time between
    /// them.
    static float interpolatePercentageChargedForDate(ZELKDate date, const ZELKLWCLogEntryPowerStatus &first,
                                                     const ZELKLWCLogEntryPowerStatus &second);

    bool validateMenuItem() const { return true; }
    /// Scripting path of the log.
    QString objectSpecifier() const;

Q_SIGNALS:
    /// Around every change of the visible entries, also when the range stays as it was.
    void visibleEntriesWillChange(ZELKVisibleRange before, ZELKVisibleRange after);
    void visibleEntriesDidChange(ZELKVisibleRange before, ZELKVisibleRange after);

private:
    using Handle = ZELKEntryArena::Handle;

    QList<ZELKLWCLogEntry *> entriesIn(ZELKVisibleRange range) const;
    ZELKStringPool::Id intern(std::string_view text);
    ZELKEntryKind kindOf(ZELKStringPool::Id event);
    /// `makeRaw` gives the raw event that a complaint shows.
    template <typename MakeRaw>
    std::optional<ZELKPackedProperties::Ref> readProperties(std::string_view text, MakeRaw &&makeRaw);
    void add(ZELKDate date, ZELKStringPool::Id event, ZELKStringPool::Id monitor,
             ZELKPackedProperties::Ref properties);
    void link(ZELKLWCLogEntry *entry, Handle &newestOfGroup);
    void awakeNewEntries();
    void updateOuterLimits();
    ZELKVisibleRange rangeInOrder(ZELKDate from, ZELKDate to) const;
    template <typename Contains>
    ZELKVisibleRange firstRun(Contains &&contains) const;
    std::uint64_t firstAfter(ZELKDate date) const;

    ZELKLWCDateRangeController *m_dateRange = nullptr;
    EntryClasses m_entryClasses;
    ZELKEntryArena m_arena;
    ZELKPropertyTextReader m_propertyReader;
    std::array<ZELKStringPool::Id, 32>
        m_recentTexts{};              // event and monitor names, by a few of their characters
    std::vector<std::int8_t> m_kinds; // of event names by number, -1 where not yet looked up
    std::vector<Handle> m_entries;
    std::vector<Handle> m_finalGroupEntries; // by group index
    std::size_t m_firstNewEntry = 0;         // of the batch under way
    ZELKVisibleRange m_visibleRange;
    QStringList m_batteryNames;
    QHash<ZELKStringPool::Id, Handle> m_batteries;
    ZELKDate m_finalDate = ZELKDate::distantPast();
    ZELKDate m_latestEntryDate = ZELKDate::distantPast();
    bool m_ascending = true; // no entry is older than the one before it
    Handle m_pastEntry = ZELKEntryArena::none;
};
