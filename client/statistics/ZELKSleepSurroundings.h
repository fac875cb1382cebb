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

    Entries before;
    /// From the first to the last with those left out; empty if `isComplete`.
    Entries all;
    Entries behind;
    /// None of the log's was left out.
    bool isComplete = true;
};
