#pragma once

#include "ZELKDate.h"
#include "ZELKDictionary.h"
#include "ZELKPackedProperties.h"
#include "ZELKStringPool.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// The classes of entries.
enum class ZELKEntryKind : std::uint8_t { Plain, Daemon, IdleSleep, PowerState, PowerStatus, Account };

/// Where entries live, with all that they share: texts, packed properties, and the rarely used values that
/// would widen every entry. Entries stand in blocks that never move and are never freed one by one; a pointer
/// to one is valid as long as its arena. Between themselves entries keep 32-bit handles.
class ZELKEntryArena
{
public:
    using Handle = std::uint32_t;
    using Id = ZELKStringPool::Id;
    static constexpr Handle none = 0;

    /// What entries of one kind, event, monitor and battery have in common.
    struct Identity
    {
        ZELKEntryKind kind = ZELKEntryKind::Plain;
        Id event = ZELKStringPool::nil;
        Id monitor = ZELKStringPool::nil; ///< localised
        Id group = ZELKStringPool::nil;
        Id eventText = ZELKStringPool::nil; ///< the event's name, localised
        std::uint32_t groupIndex = 0;       ///< groups are numbered from 0 as they are first seen
    };
    using IdentityId = std::uint32_t;

    /// Attributes that were set by hand; others are built when they are asked for.
    struct Attributes
    {
        QStringList keys;
        ZELKDictionary values;

        /// A new key goes last; an old one keeps its place and takes the new value.
        void set(const QString &key, const QVariant &value);
    };

    /// `log` is what entries name as their container; null for entries that stand in no log.
    explicit ZELKEntryArena(ZELKLWCLog *log = nullptr);
    ~ZELKEntryArena();
    ZELKEntryArena(const ZELKEntryArena &) = delete;
    ZELKEntryArena &operator=(const ZELKEntryArena &) = delete;

    /// Makes an entry, neither linked nor awake. `monitor` is the raw identifier.
    ZELKLWCLogEntry *entryWithDate(ZELKEntryKind kind, ZELKDate date, const QString &event,
                                   const QString &monitor, const ZELKDictionary &properties);
    ZELKLWCLogEntry *make(IdentityId identity, ZELKDate date, ZELKPackedProperties::Ref properties);

    /// The identity of an event; `name` is the battery's, and matters to power-status entries alone.
    IdentityId identityFor(ZELKEntryKind kind, Id event, Id monitor, Id name);
    /// The same kind with other texts; what the entries' setters need.
    IdentityId identityWith(ZELKEntryKind kind, Id event, Id localisedMonitor, Id group);
    const Identity &identity(IdentityId id) const { return m_identities[id]; }
    std::size_t groupCount() const { return m_groups.size(); }
    Id group(std::uint32_t groupIndex) const { return m_groups[groupIndex]; }

    /// Null for `none`.
    ZELKLWCLogEntry *at(Handle handle) const
    {
        return handle == none ? nullptr : static_cast<ZELKLWCLogEntry *>(slot(handle));
    }

    ZELKLWCLog *log() const { return m_log; }
    ZELKStringPool &texts() { return m_texts; }
    const ZELKStringPool &texts() const { return m_texts; }
    ZELKPackedProperties &properties() { return m_properties; }

    /// The duplicates merged into one entry, in arrival order. List 0 is the empty one.
    using ListId = std::uint32_t;
    struct DuplicateList
    {
        std::uint32_t first = 0;
        std::uint32_t last = 0;
        std::uint32_t count = 0;
        std::uint32_t countAtAwakening = 0;
    };
    struct DuplicateLink
    {
        Handle entry = none;
        std::uint32_t next = 0; ///< 0 ends the list
    };
    /// Appends to a list, a new one for list 0; answers the list's number.
    ListId appendDuplicate(ListId list, Handle entry);
    DuplicateList &duplicateList(ListId list) { return m_duplicateLists[list]; }
    const DuplicateLink &duplicateLink(std::uint32_t link) const { return m_duplicateLinks[link]; }

    QHash<Handle, Attributes> &attributes() { return m_attributes; }
    QHash<Handle, QString> &supplementSummaries() { return m_supplementSummaries; }

private:
    struct Source
    {
        ZELKEntryKind kind;
        Id event;
        Id monitor;
        Id name;
        bool operator==(const Source &) const = default;
    };
    struct SourceHash
    {
        std::size_t operator()(const Source &source) const;
    };

    // Every kind fits one slot: links are 32-bit handles so that an entry stays at 72 bytes.
    static constexpr std::size_t slotSize = 72;
    static constexpr std::size_t slotsInBlock = 4096;

    void *slot(Handle handle) const
    {
        return m_blocks[(handle - 1) / slotsInBlock].get() + (handle - 1) % slotsInBlock * slotSize;
    }
    std::uint32_t groupIndexFor(Id group);
    Id groupFor(const Source &source, Id localisedMonitor);

    ZELKLWCLog *m_log;
    ZELKStringPool m_texts;
    ZELKPackedProperties m_properties;
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    Handle m_next = 1;
    std::vector<Identity> m_identities;
    std::unordered_map<Source, IdentityId, SourceHash> m_bySource;
    std::vector<Id> m_groups;
    std::unordered_map<Id, std::uint32_t> m_groupIndexes;
    std::vector<DuplicateList> m_duplicateLists;
    std::vector<DuplicateLink> m_duplicateLinks;
    QHash<Handle, Attributes> m_attributes;
    QHash<Handle, QString> m_supplementSummaries;
};
