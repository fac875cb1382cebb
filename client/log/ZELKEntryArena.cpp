#include "ZELKEntryArena.h"

#include "ZELKFormat.h"
#include "ZELKLWCLogEntryAccount.h"
#include "ZELKLWCLogEntryDaemon.h"
#include "ZELKLWCLogEntryIdleSleep.h"
#include "ZELKLWCLogEntryPowerState.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKValue.h"

#include <new>

namespace {

ZELKLWCLogEntry *construct(void *at, ZELKEntryKind kind, const ZELKLWCLogEntry::Birth &birth)
{
    switch (kind) {
    case ZELKEntryKind::Plain:
        return ::new (at) ZELKLWCLogEntry(birth);
    case ZELKEntryKind::Daemon:
        return ::new (at) ZELKLWCLogEntryDaemon(birth);
    case ZELKEntryKind::IdleSleep:
        return ::new (at) ZELKLWCLogEntryIdleSleep(birth);
    case ZELKEntryKind::PowerState:
        return ::new (at) ZELKLWCLogEntryPowerState(birth);
    case ZELKEntryKind::PowerStatus:
        return ::new (at) ZELKLWCLogEntryPowerStatus(birth);
    case ZELKEntryKind::Account:
        return ::new (at) ZELKLWCLogEntryAccount(birth);
    }
    Q_UNREACHABLE();
}

} // namespace

std::size_t ZELKEntryArena::SourceHash::operator()(const Source &source) const
{
    std::uint64_t hash = std::uint64_t(source.event) << 32 | source.monitor;
    hash = (hash ^ (std::uint64_t(source.name) << 8) ^ std::uint64_t(source.kind)) * 0x9E3779B97F4A7C15U;
    return std::size_t(hash ^ hash >> 29);
}

ZELKEntryArena::ZELKEntryArena(ZELKLWCLog *log)
    : m_log(log)
    , m_properties((ZELKEntryWords::internAll(m_texts), m_texts))
    , m_duplicateLists(1)
    , m_duplicateLinks(1)
{
}

ZELKEntryArena::~ZELKEntryArena() = default;

// MARK: entries

ZELKLWCLogEntry *ZELKEntryArena::make(IdentityId identityId, ZELKDate date,
                                      ZELKPackedProperties::Ref properties)
{
    static_assert(sizeof(ZELKLWCLogEntry) <= slotSize && sizeof(ZELKLWCLogEntryAccount) <= slotSize &&
                  sizeof(ZELKLWCLogEntryDaemon) <= slotSize && sizeof(ZELKLWCLogEntryIdleSleep) <= slotSize &&
                  sizeof(ZELKLWCLogEntryPowerState) <= slotSize &&
                  sizeof(ZELKLWCLogEntryPowerStatus) <= slotSize &&
                  slotSize % alignof(ZELKLWCLogEntryPowerStatus) == 0);
    if (m_next > m_blocks.size() * slotsInBlock)
        m_blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(slotsInBlock * slotSize));
    const Handle handle = m_next++;
    return construct(slot(handle), m_identities[identityId].kind,
                     {*this, handle, identityId, date, properties});
}

ZELKLWCLogEntry *ZELKEntryArena::entryWithDate(ZELKEntryKind kind, ZELKDate date, const QString &event,
                                               const QString &monitor, const ZELKDictionary &properties)
{
    const ZELKPackedProperties::Ref packed = m_properties.pack(properties);
    const Id name = m_properties.textId(packed, ZELKPackedProperties::Name);
    return make(identityFor(kind, m_texts.intern(event), m_texts.intern(monitor), name), date, packed);
}

// MARK: identities

ZELKEntryArena::IdentityId ZELKEntryArena::identityFor(ZELKEntryKind kind, Id event, Id monitor, Id name)
{
    const Source source{kind, event, monitor,
                        kind == ZELKEntryKind::PowerStatus ? name : ZELKStringPool::nil};
    if (const auto found = m_bySource.find(source); found != m_bySource.end())
        return found->second;
    const QString identifier = m_texts.string(monitor);
    const Id localised = m_texts.intern(ZELKLWCLogEntry::localizedStringForMonitor(identifier, identifier));
    const IdentityId made = identityWith(kind, event, localised, groupFor(source, localised));
    m_bySource.emplace(source, made);
    return made;
}

ZELKEntryArena::IdentityId ZELKEntryArena::identityWith(ZELKEntryKind kind, Id event, Id localisedMonitor,
                                                        Id group)
{
    const QString name = m_texts.string(event);
    const Id eventText = m_texts.intern(ZELKLWCLogEntry::localizedStringForSummary(name, name));
    m_identities.push_back({kind, event, localisedMonitor, group, eventText, groupIndexFor(group)});
    return IdentityId(m_identities.size() - 1);
}

ZELKEntryArena::Id ZELKEntryArena::groupFor(const Source &source, Id localisedMonitor)
{
    switch (source.kind) {
    case ZELKEntryKind::Daemon:
        return m_texts.intern(ZELKLWCLogEntryDaemon::groupName());
    case ZELKEntryKind::PowerState:
        return m_texts.intern(ZELKLWCLogEntryPowerState::groupName());
    case ZELKEntryKind::Account:
        return m_texts.intern(ZELKLWCLogEntryAccount::groupName());
    case ZELKEntryKind::PowerStatus:
        return m_texts.intern(ZELKLWCLogEntryPowerStatus::groupName(m_texts.string(localisedMonitor),
                                                                    m_texts.string(source.name)));
    default:
        return source.monitor;
    }
}

std::uint32_t ZELKEntryArena::groupIndexFor(Id group)
{
    const auto [found, isNew] = m_groupIndexes.try_emplace(group, std::uint32_t(m_groups.size()));
    if (isNew)
        m_groups.push_back(group);
    return found->second;
}

// MARK: rare values

void ZELKEntryArena::Attributes::set(const QString &key, const QVariant &value)
{
    if (!keys.contains(key))
        keys.append(key);
    values.insert(key, value);
}

ZELKEntryArena::ListId ZELKEntryArena::appendDuplicate(ListId list, Handle entry)
{
    if (list == 0) {
        m_duplicateLists.emplace_back();
        list = ListId(m_duplicateLists.size() - 1);
    }
    m_duplicateLinks.push_back({entry, 0});
    const auto link = std::uint32_t(m_duplicateLinks.size() - 1);
    DuplicateList &grown = m_duplicateLists[list];
    if (grown.count++ == 0)
        grown.first = link;
    else
        m_duplicateLinks[grown.last].next = link;
    grown.last = link;
    return list;
}
