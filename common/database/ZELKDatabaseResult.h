#pragma once

/// How the run of a statement ended. A failed run raises nothing (see ZELKDatabaseController), so a writer,
/// and a reader that must know whether it has seen every row, asks here.
struct ZELKDatabaseResult
{
    enum class End {
        Done,
        Stopped, ///< the call-back wanted no more rows
        Failed,
    };
    End end = End::Done;
    /// SQLite's primary result code of the last step.
    int code = 0;

    bool failed() const { return end == End::Failed; }
    bool operator==(const ZELKDatabaseResult &) const = default;
};
