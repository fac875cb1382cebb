#include "ZELKEntryRecord.h"

#include "ZELKLWCLogEntry.h"

ZELKEntryRecord::ZELKEntryRecord(const Birth &birth)
    : m_arena(&birth.arena)
    , m_date(birth.date)
    , m_self(birth.self)
    , m_properties(birth.properties)
    , m_identity(birth.identity & 0x7FFFFFFFU)
    , m_awake(0)
{
}

ZELKEntryRecord::Handle ZELKEntryRecord::handleOf(const ZELKLWCLogEntry *entry)
{
    return entry ? entry->handle() : ZELKEntryArena::none;
}

ZELKEntryRecord::Container ZELKEntryRecord::container() const
{
    if (m_container == heldByLog)
        return m_arena->log();
    if (m_container == ZELKEntryArena::none)
        return {};
    return m_arena->at(m_container);
}

void ZELKEntryRecord::setContainer(const Container &container)
{
    if (std::holds_alternative<ZELKLWCLog *>(container))
        m_container = heldByLog;
    else if (const auto *entry = std::get_if<ZELKLWCLogEntry *>(&container))
        m_container = handleOf(*entry);
    else
        m_container = ZELKEntryArena::none;
}

void ZELKEntryRecord::setEvent(const QString &event)
{
    setIdentity(
        m_arena->identityWith(kind(), m_arena->texts().intern(event), identity().monitor, identity().group));
}

void ZELKEntryRecord::setMonitor(const QString &monitor)
{
    setIdentity(
        m_arena->identityWith(kind(), identity().event, m_arena->texts().intern(monitor), identity().group));
}

void ZELKEntryRecord::setGroup(const QString &group)
{
    setIdentity(
        m_arena->identityWith(kind(), identity().event, identity().monitor, m_arena->texts().intern(group)));
}

void ZELKEntryRecord::setProperties(const ZELKDictionary &properties)
{
    m_properties = packed().pack(properties);
}

void ZELKEntryRecord::setSupplimentSummary(const QString &summary)
{
    m_arena->supplementSummaries().insert(m_self, summary);
}

void ZELKEntryRecord::setPairRepresents(const QString &word)
{
    m_pairRepresents = word.isNull() ? ZELKStringPool::nil : m_arena->texts().intern(word);
}

void ZELKEntryRecord::copyLinks(const ZELKEntryRecord &other)
{
    m_past = other.m_past;
    m_next = other.m_next;
    m_previous = other.m_previous;
    m_container = other.m_container;
}

void ZELKEntryRecord::appendDuplicate(const ZELKEntryRecord &other)
{
    m_duplicates = m_arena->appendDuplicate(m_duplicates, other.m_self);
}
