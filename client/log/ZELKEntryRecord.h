#pragma once

#include "ZELKEntryArena.h"

#include <QString>

#include <variant>

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// What an entry stores: its values, and its links to other entries of the arena. Texts and properties stand
/// in the arena; what is here is 60 bytes. Without a rule of its own; those are the entry's.
class ZELKEntryRecord
{
public:
    using Id = ZELKStringPool::Id;
    using Handle = ZELKEntryArena::Handle;
    /// The log, or the entry that took this one in as a duplicate.
    using Container = std::variant<std::monostate, ZELKLWCLog *, ZELKLWCLogEntry *>;

    /// Where and as what an arena makes an entry.
    struct Birth
    {
        ZELKEntryArena &arena;
        Handle self;
        ZELKEntryArena::IdentityId identity;
        ZELKDate date;
        ZELKPackedProperties::Ref properties;
    };
    explicit ZELKEntryRecord(const Birth &birth);
    ZELKEntryRecord(const ZELKEntryRecord &) = delete;
    ZELKEntryRecord &operator=(const ZELKEntryRecord &) = delete;

    ZELKEntryKind kind() const { return identity().kind; }
    Container container() const;
    void setContainer(const Container &container);
    ZELKDate date() const { return m_date; }
    void setDate(ZELKDate date) { m_date = date; }
    QString event() const { return text(identity().event); }
    void setEvent(const QString &event);
    /// Localised.
    QString monitor() const { return text(identity().monitor); }
    void setMonitor(const QString &monitor);
    ZELKDictionary properties() const { return m_arena->properties().unpack(m_properties); }
    /// One of the properties, found without unpacking the others.
    QVariant property(const QString &key) const { return m_arena->properties().value(m_properties, key); }
    void setProperties(const ZELKDictionary &properties);
    QString group() const { return text(identity().group); }
    void setGroup(const QString &group);
    QString supplimentSummary() const { return m_arena->supplementSummaries().value(m_self); }
    void setSupplimentSummary(const QString &summary);

    /// The entry that was appended before this one, of any group.
    ZELKLWCLogEntry *past() const { return m_arena->at(m_past); }
    void setPast(ZELKLWCLogEntry *past) { m_past = handleOf(past); }
    /// The older entry of the group.
    ZELKLWCLogEntry *next() const { return m_arena->at(m_next); }
    void setNext(ZELKLWCLogEntry *next) { m_next = handleOf(next); }
    /// The newer entry of the group.
    ZELKLWCLogEntry *previous() const { return m_arena->at(m_previous); }
    void setPrevious(ZELKLWCLogEntry *previous) { m_previous = handleOf(previous); }
    /// The earlier entry that opens the interval this one closes.
    ZELKLWCLogEntry *pair() const { return m_arena->at(m_pair); }
    void setPair(ZELKLWCLogEntry *pair) { m_pair = handleOf(pair); }
    /// The state from here on; a null string when the entry opens none.
    QString pairRepresents() const { return text(m_pairRepresents); }
    void setPairRepresents(const QString &word);

    /// The numbers behind the texts, for those who walk many entries.
    Id eventId() const { return identity().event; }
    Id groupId() const { return identity().group; }
    Id pairRepresentsId() const { return m_pairRepresents; }
    std::uint32_t groupIndex() const { return identity().groupIndex; }
    Handle handle() const { return m_self; }
    ZELKPackedProperties::Ref packedProperties() const { return m_properties; }
    ZELKEntryArena &arena() const { return *m_arena; }

protected:
    ~ZELKEntryRecord() = default; // an arena never destroys its entries one by one

    static constexpr Handle heldByLog = 0xFFFFFFFF;

    const ZELKEntryArena::Identity &identity() const { return m_arena->identity(m_identity); }
    QString text(Id id) const { return m_arena->texts().string(id); }
    ZELKPackedProperties &packed() const { return m_arena->properties(); }
    void setPairRepresentsId(Id word) { m_pairRepresents = word; }

    /// Takes links and container over from another record.
    void copyLinks(const ZELKEntryRecord &other);
    Handle containerHandle() const { return m_container; }
    void setContainerHandle(Handle container) { m_container = container; }
    ZELKEntryArena::ListId duplicateList() const { return m_duplicates; }
    void appendDuplicate(const ZELKEntryRecord &other);
    Id storedSummary() const { return m_summary; }
    void storeSummary(Id summary) const { m_summary = summary; }
    bool isAwake() const { return m_awake; }
    void setAwake() { m_awake = 1; }

private:
    static Handle handleOf(const ZELKLWCLogEntry *entry);
    void setIdentity(ZELKEntryArena::IdentityId identity) { m_identity = identity & 0x7FFFFFFFU; }

    ZELKEntryArena *m_arena;
    ZELKDate m_date;
    Handle m_past = ZELKEntryArena::none;
    Handle m_next = ZELKEntryArena::none;
    Handle m_previous = ZELKEntryArena::none;
    Handle m_pair = ZELKEntryArena::none;
    Handle m_container = ZELKEntryArena::none;
    Handle m_self;
    ZELKEntryArena::ListId m_duplicates = 0;
    mutable Id m_summary = ZELKStringPool::nil; // composed when it is first asked for
    ZELKPackedProperties::Ref m_properties;
    ZELKEntryArena::IdentityId m_identity : 31;
    std::uint32_t m_awake : 1;
    Id m_pairRepresents = ZELKStringPool::nil;
};
