#pragma once

#include "ZELKLWAEvent.h"

#include <QStringList>

#include <cstddef>
#include <memory>
#include <optional>

/// The boots and shutdowns of one accounting file (wtmp), which may be packed with gzip, a piece at a time.
/// They are told as the watcher of the running file tells them.
class ZELKAccountingHistory
{
public:
    static constexpr std::size_t mostRecords = 5000000;

    explicit ZELKAccountingHistory(const QString &path);
    ~ZELKAccountingHistory();
    ZELKAccountingHistory(ZELKAccountingHistory &&other) noexcept;

    /// The file itself and what rotation made of it: wtmp.1, wtmp.2.gz, wtmp-20240301 and the like, the
    /// oldest first; of these, with `since`, those that are there and were written to since then. Those
    /// packed in a way that is not read here are named in a console line.
    static QStringList files(const QString &path, std::optional<ZELKDate> since = std::nullopt);

    /// Adds the next piece's events; false when there is no other. What is passed over, and a file that can
    /// not be read or breaks off, is one console line.
    bool readSome(std::vector<ZELKLWAEvent> &events);

private:
    struct Reading;
    std::unique_ptr<Reading> m_reading;
};
