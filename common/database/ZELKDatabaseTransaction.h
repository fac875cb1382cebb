#pragma once

#include <QString>

class ZELKDatabaseController;

/// A transaction around several statements: begun by the constructor, undone by the destructor unless
/// commit() was reached. The three keys name scripts.
///
/// A statement that fails can make SQLite undo the whole transaction by itself, and what is written after
/// that would stand alone: a writer stops at the first result that failed().
class ZELKDatabaseTransaction
{
public:
    /// Raises the script's failure when the transaction cannot begin, as when another connection has been
    /// writing for longer than the busy timeout.
    ZELKDatabaseTransaction(ZELKDatabaseController &controller, const QString &beginKey,
                            const QString &commitKey, const QString &rollbackKey);
    /// Rolls back what is still open and drops the prepared statements, since the one that failed would
    /// answer its next reset with the old failure. A failing rollback is logged.
    ~ZELKDatabaseTransaction();
    ZELKDatabaseTransaction(const ZELKDatabaseTransaction &) = delete;
    ZELKDatabaseTransaction &operator=(const ZELKDatabaseTransaction &) = delete;

    /// Raises the script's failure, and the destructor then rolls back.
    void commit();

private:
    ZELKDatabaseController &m_controller;
    QString m_commitKey;
    QString m_rollbackKey;
    bool m_committed = false;
};
