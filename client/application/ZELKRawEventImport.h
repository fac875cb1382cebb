#pragma once

#include "ZELKRawEventLineReader.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <functional>

class ZELKLWCStore;
class ZELKLineSource;

/// Brings raw events from lines into the cache. A line that is none is told of and passed over; blank lines
/// are passed over quietly. Events that the cache has already stay as they are.
class ZELKRawEventImport
{
public:
    using Complaint = std::function<void(std::uint64_t line, const QString &reason)>;

    /// A longer line is passed over.
    static constexpr std::size_t longestLine = std::size_t(16) << 20;

    ZELKRawEventImport(ZELKLWCStore &store, Complaint complain);

    /// False when the cache refused to take what was read. Lines come in no particular order.
    bool run(ZELKLineSource &lines);

    /// Events that are in the cache now, and those of them that were not before.
    std::uint64_t imported() const { return m_imported; }
    std::uint64_t added() const { return m_added; }
    std::uint64_t skipped() const { return m_skipped; }

private:
    void take(std::string_view line, std::uint64_t number);
    void skip(std::uint64_t number, const QString &reason);
    bool write();

    ZELKLWCStore &m_store;
    Complaint m_complain;
    ZELKRawEventLineReader m_reader;
    QList<ZELKRawEvent> m_events; // not yet written
    std::size_t m_bytes = 0;      // of their lines
    std::uint64_t m_imported = 0;
    std::uint64_t m_added = 0;
    std::uint64_t m_skipped = 0;
};
