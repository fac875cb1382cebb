#pragma once

#include "ZELKBatterySamples.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKLWCStateTracker.h"
#include "ZELKSleepCostTracker.h"

#include <vector>

/// All that is computed of selected entries, in one walk in the order of time. Entries that were not selected
/// matter to the sleeps alone.
class ZELKSelectionStatistics
{
public:
    using Id = ZELKStringPool::Id;

    /// `first` and `last` are the oldest and the latest of the selected, and time is counted from `start`. As
    /// they arrived, entries come with their duplicates before the next of their group.
    ZELKSelectionStatistics(ZELKLWCLogEntry &first, const ZELKLWCLogEntry &last, ZELKDate start,
                            bool isAsArrived);

    void add(const ZELKLWCLogEntry &entry, bool isSelected);
    /// One that was merged into an entry that is added or lies before them all.
    void addDuplicate(const ZELKLWCLogEntry &duplicate);
    /// Adds the duplicates that arrived later than `reached`, and are not older than `date`.
    void finish(ZELKEntryArena::Handle reached, ZELKDate date);
    /// The time behind the last entry belongs to the states in force there, up to `end`.
    void close(const ZELKLWCLogEntry &last, ZELKDate end);

    ZELKStringPool &texts() const { return m_texts; }
    const ZELKLWCStateTracker &usage() const { return m_usage; }
    const ZELKLWCStateTracker &powerSource() const { return m_powerSource; }
    const std::vector<ZELKLWCBattery> &batteries() const { return m_samples.batteries(); }
    /// Once, at the end.
    ZELKSleepCosts sleepCosts() { return m_sleeps.costs(); }

private:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// A source of power, which has a group of entries of its own.
    struct Source
    {
        const ZELKLWCLogEntryPowerStatus *latest = nullptr;
        Id name = ZELKStringPool::nil;
        Id state = ZELKStringPool::nil; ///< "Power Source State" of the latest entry
        bool isOnBattery = false;       ///< it drains itself, at the latest entry
        bool isSelected = false;        ///< the latest entry
        bool isRepeated = false;        ///< duplicates of it were met
        int percentage = 0;
        ZELKDate repetition;          ///< the date of the latest met
        std::uint32_t battery = none; ///< among the sleeps' batteries
        std::uint32_t sample = none;  ///< among the samples
    };

    static Id powerSourceOf(const ZELKLWCLogEntry &entry);
    void addReading(const ZELKLWCLogEntryPowerStatus &entry, bool isSelected);
    Source &sourceOf(const ZELKLWCLogEntry &entry)
    {
        const std::uint32_t group = entry.groupIndex();
        if (group >= m_sources.size())
            m_sources.resize(std::size_t(group) + 1);
        return m_sources[group];
    }
    void begin(Source &source, const ZELKLWCLogEntryPowerStatus &entry);
    void readState(Source &source, const ZELKLWCLogEntryPowerStatus &entry);
    bool isOnBattery(const ZELKLWCLogEntryPowerStatus &entry, Id state) const;
    void addRepetition(const ZELKLWCLogEntryPowerStatus &entry, ZELKDate date);
    void addSecondSample(const Source &source);

    ZELKStringPool &m_texts;
    Id m_batteryPower;
    Id m_inside;
    bool m_isAsArrived;
    std::vector<Source> m_sources; ///< by their groups
    ZELKLWCStateTracker m_usage;
    ZELKLWCStateTracker m_powerSource;
    ZELKBatterySamples m_samples;
    ZELKSleepCostTracker m_sleeps;
};

// In the header's sight, as a log has a million entries.

inline void ZELKSelectionStatistics::add(const ZELKLWCLogEntry &entry, bool isSelected)
{
    const ZELKEntryKind kind = entry.kind();
    if (kind == ZELKEntryKind::Daemon)
        return m_sleeps.addBreak(entry.date());
    if (const Id word = entry.pairRepresentsId(); word != ZELKStringPool::nil) {
        if (isSelected)
            m_usage.addState(word, entry.date());
        m_sleeps.addState(word, entry.date());
    }
    if (kind == ZELKEntryKind::PowerStatus)
        addReading(static_cast<const ZELKLWCLogEntryPowerStatus &>(entry), isSelected);
    else if (isSelected && entry.packedProperties() != ZELKPackedProperties::empty)
        m_powerSource.addState(powerSourceOf(entry), entry.date());
}

/// Where only the level changed, the source's state is what it was before.
inline void ZELKSelectionStatistics::addReading(const ZELKLWCLogEntryPowerStatus &entry, bool isSelected)
{
    Source &source = sourceOf(entry);
    if (!m_isAsArrived)
        addSecondSample(source);
    else if (source.isRepeated && source.isSelected)
        m_samples.addCapacity(source.sample, source.percentage, source.repetition);
    if (!source.latest)
        begin(source, entry);
    else if (entry.change() != ZELKLWCLogEntryPowerStatus::LevelChanged || entry.next() != source.latest)
        readState(source, entry);
    source.latest = &entry;
    source.isSelected = isSelected;
    source.isRepeated = false;
    if (isSelected)
        m_powerSource.addState(source.state, entry.date());
    if (source.battery == none)
        return;
    source.percentage = entry.percentageCharged();
    if (isSelected) {
        if (source.sample == none)
            source.sample = std::uint32_t(m_samples.numberOf(source.name));
        m_samples.addCapacity(source.sample, source.percentage, entry.date());
    }
    m_sleeps.addCharge(source.battery, {entry.date(), source.percentage, source.isOnBattery});
}

inline void ZELKSelectionStatistics::addDuplicate(const ZELKLWCLogEntry &duplicate)
{
    if (duplicate.kind() != ZELKEntryKind::PowerStatus)
        return;
    const auto container = duplicate.container();
    if (const auto *holder = std::get_if<ZELKLWCLogEntry *>(&container))
        addRepetition(static_cast<const ZELKLWCLogEntryPowerStatus &>(**holder), duplicate.date());
}
