#pragma once

#include "ZELKDictionary.h"
#include "ZELKLWCAbsoluteDuration.h"
#include "ZELKLWCBattery.h"
#include "ZELKSleepCosts.h"

#include <QList>
#include <QStringList>

#include <optional>

class ZELKBatterySamples;
class ZELKLWCLogEntry;
class ZELKLWCLogEntryPowerStatus;

/// Entries of one log with the period they cover, and its statistics as attributes: "Usage" (how the period
/// divides between states), "Power Source" (between power sources), one attribute for each battery under its
/// name, and "Sleeps" (what they cost), where there are sleeps and there were batteries. Presented as an
/// entry's own attributes are, so that a view can show either.
///
/// One entry without a period has the entry's attributes instead, the very ones: what is set here is set
/// there. Entries must outlive their selection.
class ZELKLWCLogEntrySelection
{
public:
    using Entries = QList<ZELKLWCLogEntry *>;
    using Period = std::optional<ZELKLWCAbsoluteDuration>;

    static constexpr QLatin1String usageKey{"Usage"};
    static constexpr QLatin1String powerSourceKey{"Power Source"};
    static constexpr QLatin1String sleepsKey{"Sleeps"};

    ZELKLWCLogEntrySelection() = default;
    /// Without a period it is that from the first entry to the last, in whatever order they are. `selection`
    /// has at least one entry.
    explicit ZELKLWCLogEntrySelection(const Entries &selection, const Period &duration = std::nullopt);

    /// In the caller's order.
    const Entries &selection() const { return m_selection; }
    void setSelection(const Entries &selection) { m_selection = selection; }
    qsizetype selectionCount() const { return m_selection.size(); }
    const Period &duration() const { return m_duration; }
    void setDuration(const Period &duration) { m_duration = duration; }
    /// Seconds in each usage state, by its word; empty until statistics are computed.
    const ZELKDictionary &summary() const { return m_summary; }
    void setSummary(const ZELKDictionary &summary) { m_summary = summary; }

    QStringList attributes() const;
    void setAttributes(const QStringList &keys);
    ZELKDictionary attributeValues() const;
    void setAttributeValues(const ZELKDictionary &values);
    /// A new key goes last; an old one keeps its place and takes the new value.
    void setAttributeValue(const QVariant &value, const QString &key);
    QVariant attributeForKey(const QString &key) const { return attributeValues().value(key); }

    /// Finds the period if there is none, and computes the statistics.
    void initAttributes();
    /// The statistics of these entries over the period, which is that from the first to the last of them if
    /// there is none yet, and ends now at the latest. Time is counted from the oldest of them if that lies
    /// before the period, so that the parts may add up to more than all of it.
    void intervals(const Entries &entries);
    static void addPowerStatusEvent(const ZELKLWCLogEntryPowerStatus &entry, ZELKBatterySamples &samples);
    /// The same keys, each with an attributed text: the part of `timeInterval` (seconds) that the value
    /// (seconds) is, and its length, "25.0%  6h"; or, when that is not above 0, the value as a percentage,
    /// "25.0%", and values that are no numbers as they are.
    static ZELKDictionary presentIntervals(const ZELKDictionary &intervals, double timeInterval);
    static ZELKDictionary presentPowerSource(const ZELKDictionary &figures)
    {
        return presentIntervals(figures, 0.0);
    }

    /// What the other attributes are made of: seconds by power source, the batteries, the sleeps.
    const ZELKDictionary &powerSources() const { return m_powerSources; }
    const std::vector<ZELKLWCBattery> &batteries() const { return m_batteries; }
    const ZELKSleepCosts &sleepCosts() const { return m_sleepCosts; }

    /// Whether the sleeps are an attribute: not where there were no batteries, no sleeps, or a battery has
    /// that very name.
    bool showsSleeps() const { return m_showsSleeps; }

private:
    void compute(const Entries &entries);
    void present();
    void presentSleeps(const ZELKLWCLogEntry &entry);

    Entries m_selection;
    ZELKDictionary m_summary;
    Period m_duration;
    QStringList m_attributes;
    ZELKDictionary m_attributeValues;
    ZELKDictionary m_powerSources;
    std::vector<ZELKLWCBattery> m_batteries;
    ZELKSleepCosts m_sleepCosts;
    bool m_showsSleeps = false;
    /// Have the attributes' keys and values, where they are not null.
    ZELKLWCLogEntry *m_keysOf = nullptr;
    ZELKLWCLogEntry *m_valuesOf = nullptr;
};
