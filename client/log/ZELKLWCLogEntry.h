#pragma once

#include "ZELKEntryRecord.h"
#include "ZELKEntryWords.h"

#include <QList>
#include <QVariant>

class ZELKLWCGroupEnumerator;
class ZELKLWCLogEntryEnumerator;

/// One event of the log. Entries are made by an arena and live as long as it; the log links them into two
/// chains, that of all entries (`past`) and that of their group (`next`, `previous`), and then awakes them:
/// an entry works out its pair, the state from here on, its summary and its attributes from older entries
/// alone.
///
/// Against time `next` is the older and `previous` the newer entry of the group. That is meant: `next` is the
/// step one takes when walking back, and every kind pairs with it.
class ZELKLWCLogEntry : public ZELKEntryRecord
{
public:
    explicit ZELKLWCLogEntry(const Birth &birth)
        : ZELKEntryRecord(birth)
    {
    }

    /// Texts of the main bundle's tables; `value` where the table lacks the key.
    static QString localizedStringForKey(const QString &key, const QString &value, const QString &table);
    static QString localizedStringForMonitor(const QString &key, const QString &value);
    static QString localizedStringForSummary(const QString &key, const QString &value);
    /// The entry, or the first one along its past, that says which state holds; null when none does.
    static ZELKLWCLogEntry *pairAtTimeOfEntry(ZELKLWCLogEntry *entry);
    /// The state word at the time of an entry; "Awake" where none is known.
    static QString pairRepresentsAtTimeOfEntry(ZELKLWCLogEntry *entry);
    static QString pairRepresentsAtDate(ZELKDate date, ZELKLWCLogEntry *entry);
    /// "Power Source State" of the entry or the first one along its past that has it; "Unknown" when none
    /// has.
    static QString powerSourceAtTimeOfEntry(ZELKLWCLogEntry *entry);

    /// An entry of the same arena with the same values and links, awoken; its group follows from the
    /// localised monitor, which is looked up again.
    ZELKLWCLogEntry *copy() const;
    /// Called once the entry is linked. Kinds that override it finish with initAttributes().
    virtual void awakeFromLog();
    /// From here on the entry has attributes; "Duplicates" tells of those merged up to now.
    void initAttributes();

    /// One line of text; composed when it is first asked for.
    QString summary() const { return text(summaryId()); }
    Id summaryId() const;
    void setSummary(const QString &summary);

    ZELKLWCLogEntryEnumerator pastEnumerator();
    ZELKLWCLogEntry *pastEntryWithEvent(const QString &event) const;
    /// Seconds from the pair to this entry, positive when the pair is the earlier; 0 without a pair.
    double pairTimeInterval() const;
    /// Forward and back in time through the group.
    ZELKLWCGroupEnumerator futureGroupEnumerator();
    ZELKLWCGroupEnumerator pastGroupEnumerator();
    static ZELKLWCLogEntry *findGroupEntryWithEvent(const QString &event, ZELKLWCGroupEnumerator enumerator);
    ZELKLWCLogEntry *pastGroupEntryWithEvent(const QString &event);
    ZELKLWCLogEntry *futureGroupEntryWithEvent(const QString &event);
    /// The entry itself.
    ZELKLWCLogEntry *events() { return this; }

    /// Whether another entry is a duplicate of this one.
    virtual bool isLike(const ZELKLWCLogEntry &other) const;
    void mergeEntry(ZELKLWCLogEntry *other);
    QList<ZELKLWCLogEntry *> duplicates() const;
    /// Date of the last duplicate, or the entry's own.
    ZELKDate finalDate() const;

    QStringList attributes() const;
    void setAttributes(const QStringList &keys);
    ZELKDictionary attributeValues() const;
    void setAttributeValues(const ZELKDictionary &values);
    QVariant attributeForKey(const QString &key) const { return attributeValues().value(key); }
    /// A new key goes last; an old one keeps its place and takes the new value.
    void setAttributeValue(const QVariant &value, const QString &key);

    /// Attributes as text: the first as it is, the rest behind ", "; "key:[dictionary]", "key:(array)", and a
    /// plain attribute by its key alone, its value left out on purpose.
    QString attributesAsString() const;
    static QString attributeDictionaryToString(const ZELKDictionary &dictionary);
    static QString attributeArrayToString(const QVariantList &array);
    /// Date, summary and attributes, separated by tabs.
    QString stringValue() const;
    QString description() const { return stringValue(); }
    QString exportAsTabSeparatedString() const { return stringValue(); }
    /// "Date", "Summary", "Monitor" and "Attributes", of nothing but property-list values.
    ZELKDictionary exportAsDictionary() const;
    /// Lengths of time as their texts, also those within dictionaries and arrays; all else as it is.
    static QVariant propertyListSafeValue(const QVariant &value);
    static ZELKDictionary propertyListSafeDictionary(const ZELKDictionary &dictionary);
    static QVariantList propertyListSafeArray(const QVariantList &array);
    QString shortDescription() const;
    QStringList componentsAsStringArray() const;

    /// Seconds from the given date to this entry's.
    double timeIntervalDistanceFrom(ZELKDate date) const { return this->date().timeIntervalSinceDate(date); }
    bool before(ZELKDate date) const { return timeIntervalDistanceFrom(date) < 0.0; }
    bool after(ZELKDate date) const { return timeIntervalDistanceFrom(date) > 0.0; }
    bool equal(ZELKDate date) const { return timeIntervalDistanceFrom(date) == 0.0; }
    /// Tool tip of an entry in a view: the state its pair opened; null without a pair.
    QString stringForToolTip() const { return pair() ? pair()->pairRepresents() : QString(); }

    /// Scripting path of the entry; empty when it stands in no log.
    QString objectSpecifier() const;
    bool visible() const;
    ZELKDictionary scriptingProperties() const;

protected:
    ~ZELKLWCLogEntry() = default; // an arena never destroys its entries one by one

    /// Same kind and event, and under five seconds later; a negative difference also qualifies.
    bool isRepeatOf(const ZELKLWCLogEntry &other) const;
    /// The summary of an awake entry.
    virtual QString composeSummary() const;
    /// Sets the kind's own attributes, then the base's.
    virtual void buildAttributes(ZELKEntryArena::Attributes &attributes) const;

    static QString general(QLatin1String key);

private:
    ZELKEntryArena::Attributes builtAttributes() const;
};
