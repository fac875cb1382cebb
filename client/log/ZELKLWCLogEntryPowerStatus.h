#pragma once

#include "ZELKLWCLogEntry.h"

/// A reading of a power source. Each source forms its own group. What changed against the older reading
/// decides the summary and the pair.
class ZELKLWCLogEntryPowerStatus final : public ZELKLWCLogEntry
{
public:
    /// What an entry reports; the values of change().
    enum Change : qint32 {
        Unclassified = 0,
        ChargingChanged = 1,
        PresenceChanged = 2,
        LevelChanged = 3,
        PowerSourceChanged = 4
    };

    using ZELKLWCLogEntry::ZELKLWCLogEntry;
    /// "monitor - name".
    static QString groupName(const QString &monitor, const QString &name);

    void awakeFromLog() override;
    /// Alike when presence, charging, power source and percentage agree, else only when all properties do;
    /// there is no limit of time.
    bool isLike(const ZELKLWCLogEntry &other) const override;

    /// The last older reading with the same change, for changes 1, 2 and 4.
    void initPairing();
    qint32 change() const { return m_change; }
    void setChange(qint32 change) { m_change = change; }

    /// True when the property's integer value is 1.
    bool stateForPropertyKey(const QString &key) const;
    bool connected() const;
    bool charging() const;
    /// True unless the older entry has an equal value for the key; so also when either lacks it.
    bool didPropertyKeyChangeSinceEntry(const QString &key, const ZELKLWCLogEntry *older) const;
    /// "Current Capacity" times a hundredth of "Max Capacity", truncated toward zero: the current capacity
    /// where the maximum is reported as 100. The formula is meant so.
    int percentageCharged() const;

    /// Stores a property that exists under its localised key.
    void addPropertyWithKey(const QString &key, ZELKDictionary &dictionary) const;
    /// The same for minutes of at least 1, as a duration.
    void addDurationPropertyWithKey(const QString &key, ZELKDictionary &dictionary) const;

protected:
    QString composeSummary() const override;
    /// "Device", a key that is not localised, then the base's.
    void buildAttributes(ZELKEntryArena::Attributes &attributes) const override;

private:
    using Key = ZELKPackedProperties::Key;

    bool agrees(std::initializer_list<Key> keys, const ZELKLWCLogEntry *other) const;
    bool differs(Key key, const ZELKLWCLogEntry *other) const;
    bool isEquallyCharged(const ZELKLWCLogEntryPowerStatus &other) const;
    Change classify() const;
    QString valueText(Key key) const;
    QString levelSummary() const;
    ZELKDictionary deviceValues() const;

    qint32 m_change = Unclassified;
};
