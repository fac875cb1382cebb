#pragma once

#include <QList>

class ZELKLWCLogEntry;

/// What a log knows beyond some of its entries that bears on their sleeps: the sleep that they begin in, an
/// hour before that and an hour behind them, and, where they were picked singly, those left out.
struct ZELKSleepSurroundings
{
    using Entries = QList<ZELKLWCLogEntry *>;

    /// `entries` in the order of their dates, at least one. Entries of no log have no surroundings.
    static ZELKSleepSurroundings of(const Entries &entries);
    /// By their dates, and at one moment as they arrived.
    static bool isOlder(const ZELKLWCLogEntry *a, const ZELKLWCLogEntry *b);

    Entries before;
    /// From the first to the last, and those that were left out. In the order of the log, which may have some
    /// late.
    Entries all;
    Entries behind;
};
