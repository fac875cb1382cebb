#pragma once

#include "ZELKLWAEvent.h"

#include <QString>

#include <cstddef>
#include <string_view>
#include <vector>

/// What a stretch of the system's accounting file (wtmp) holds. Records are those of this machine's C
/// library; whatever else stands in the file is counted and passed over.
struct ZELKAccountingRecords
{
    enum class Kind { Boot, ShutDown };
    struct Record
    {
        Kind kind;
        ZELKDate date;

        /// The one form in which a record is told, so that it is known again wherever it is read.
        ZELKLWAEvent event() const;

        friend bool operator==(const Record &, const Record &) = default;
    };

    /// In the order of the file.
    std::vector<Record> records;
    /// Bytes of whole records; what follows them may be a record that is still being written.
    std::size_t consumed = 0;
    std::size_t strayBytes = 0;
    std::size_t unknownTypes = 0;
    /// Dated before 1990, or more than a day after `now`: another layout, or a clock that was not yet set.
    std::size_t absurdTimes = 0;

    static ZELKAccountingRecords read(std::string_view bytes, ZELKDate now);
    static std::size_t recordSize();

    bool skippedAny() const { return strayBytes > 0 || unknownTypes > 0 || absurdTimes > 0; }
    /// "2 of unknown type, 1 with an absurd time, 17 stray bytes".
    QString skippedText() const;
};
