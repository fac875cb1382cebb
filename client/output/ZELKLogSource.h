#pragma once

#include "ZELKExportSource.h"

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// All entries of a log, whatever range is chosen, in the order they came. Entries that come meanwhile are
/// not among them. A format writes some hundred of them at a time.
class ZELKLogSource : public ZELKExportSource
{
public:
    /// The log must outlive the source.
    explicit ZELKLogSource(const ZELKLWCLog &log);

    Outcome writeSome(QIODevice &device) final;
    double fraction() const final;

protected:
    /// Each answers whether it could be written.
    virtual bool begin(QIODevice &device);
    virtual bool writeEntries(QIODevice &device, int first, int end) = 0;
    virtual bool end(QIODevice &device);

    const ZELKLWCLogEntry &entry(int index) const;

private:
    const ZELKLWCLog &m_log;
    int m_count;
    int m_next = 0;
    bool m_hasBegun = false;
};
