#pragma once

#include "ZELKDate.h"
#include "ZELKRawEvent.h"

#include <cstdint>
#include <optional>

class ZELKLWCLog;

/// One batch of cached events on its way into the log: what is newer than the log's final date.
///
/// A batch that broke off is followed by one that begins at the final date itself, and leaves out as many
/// events of that date as the log was handed.
class ZELKLogFeed
{
public:
    /// `handedOfFinalDate`: what the batch before told, when it broke off; else 0.
    ZELKLogFeed(ZELKLWCLog &log, std::uint64_t handedOfFinalDate);

    /// Where the reading begins; nothing for an empty log, which takes everything.
    std::optional<ZELKDate> from() const { return m_from; }
    /// The event that the reader stands on.
    void hand(const ZELKRawEventReader &reader, ZELKRawEventReader::Kind kind);
    /// Lets the log take in what it was handed; writes how much, if anything.
    void end();
    /// How many events of the log's final date it was handed, as far as they came in this way.
    std::uint64_t handedOfFinalDate() const { return m_handedOfFinalDate; }

private:
    bool wasHandedBefore(const ZELKRawEventReader &reader, ZELKRawEventReader::Kind kind);

    ZELKLWCLog &m_log;
    std::optional<ZELKDate> m_from;
    ZELKDate m_finalDate;
    std::uint64_t m_handedOfFinalDate;
    std::uint64_t m_toLeaveOut;
    std::uint64_t m_count = 0;
};
