#pragma once

#include "ZELKDatabaseResult.h"
#include "ZELKDatabaseRow.h"
#include "ZELKDictionary.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class ZELKBundle;
class ZELKSQLitePort;
struct sqlite3;
struct sqlite3_stmt;

/// One SQLite database whose statements are known only by a key, with a table of settings. The SQL stands in
/// the bundle's "ZELKDatabaseController.plist" or else in its Info.plist. Main thread only.
///
/// Failures are raised as ZELKAssertionFailure and name className(). The one exception is a step that fails:
/// that ends its statement with the rows read so far, writes one console line, and shows in lastResult().
class ZELKDatabaseController
{
public:
    using Rows = QList<ZELKDictionary>;
    using RowHandler = std::function<bool(const ZELKDatabaseRow &)>;
    /// Statements by key; each is finalized when the last holder lets go of it.
    using PreparedStatements = std::map<QString, std::shared_ptr<sqlite3_stmt>>;

    /// Neither `bundle` nor `port` may be null. `cachesFolder` is where the base class keeps its file; empty
    /// means the user's caches folder. Opens nothing.
    ZELKDatabaseController(std::shared_ptr<const ZELKBundle> bundle, std::shared_ptr<ZELKSQLitePort> port,
                           const QString &cachesFolder = {});
    /// Finalizes the statements, then closes the connection; a failure is logged. A subclass with a className
    /// or hooks of its own calls closeDatabase() in its destructor, where they still answer.
    virtual ~ZELKDatabaseController();
    ZELKDatabaseController(const ZELKDatabaseController &) = delete;
    ZELKDatabaseController &operator=(const ZELKDatabaseController &) = delete;

    /// The name that messages begin with.
    virtual QString className() const;

    /// Where the database lies. Here: the bundle identifier with ".db" in the caches folder, which is created
    /// when missing. An empty URL opens a private temporary database.
    virtual QUrl databaseURL();
    /// The open connection; opens it on first use: databaseWillOpen, the script ZELKDatabaseSQLCreate, the
    /// "version" setting where there is none, databaseDidOpen. When a step of this raises, the controller is
    /// closed again and the next call begins anew.
    ///
    /// A connection whose creation script failed is given up with sqlite3_free, not sqlite3_close, and this
    /// is meant: only the connection's own memory returns; its buffers and its file descriptor stay until the
    /// program ends, and the next call opens a fresh connection beside it.
    sqlite3 *database();
    /// Closes the connection there is and keeps `database`, unopened. Raises "… close failed: …", and keeps
    /// what there was, while statements are prepared: drop those first with setPreparedStatement({}).
    void setDatabase(sqlite3 *database);
    bool isOpen() const { return m_database != nullptr; }
    /// Between BEGIN and COMMIT or ROLLBACK.
    bool isInTransaction() const;

    /// The "version" setting: the bundle version that created the database.
    std::optional<QString> databaseVersion();

    /// The bundle's statement resource, read on first use; empty without one.
    const ZELKDictionary &coreSQLStatements();
    void setCoreSQLStatements(const ZELKDictionary &statements) { m_coreSQLStatements = statements; }
    /// The SQL of a key: resource first, then Info.plist. A key in neither raises
    /// "… Missing Info.plist property '(null)'": the message is given nil where the key would be, and this is
    /// meant.
    virtual std::optional<QString> SQLForKey(const QString &key);
    /// The key's statement, prepared once, reset and ready to bind. A statement is reset before each use and
    /// not after it; since a reset answers the failure of the last step, the use that follows a failed run
    /// raises "… reset '…' failed: …", once. To forget a failed run, drop the statements with
    /// setPreparedStatement({}).
    std::shared_ptr<sqlite3_stmt> statementForKey(const QString &key);
    const PreparedStatements &preparedStatement() const { return m_preparedStatement; }
    /// Finalizes every statement of the old cache that the new one does not hold.
    void setPreparedStatement(const PreparedStatements &statements) { m_preparedStatement = statements; }

    /// Runs the key's SQL as one script; raises what goes wrong in it (BUSY too), so it never answers
    /// false.
    bool executeStatements(const QString &key);
    /// Runs one statement and gathers its rows; nothing when it produced none. `parameters` has one entry for
    /// each parameter, under its name with the "@", and no other: a QString is bound as text (up to a NUL), a
    /// QByteArray as a blob; any other type is refused, numbers and dates too.
    ///
    /// BUSY, LOCKED and what else a further step can cure are stepped again at once and without limit. A
    /// write that no step can cure fails: one under an open read of ours that another connection has
    /// overtaken.
    std::optional<Rows> executeStatement(const QString &key, const ZELKDictionary &parameters);
    /// The same for any number of rows, each shown to `handler` without copying; false from it ends the run
    /// and resets the statement. The handler may use the database, but may not close it.
    ZELKDatabaseResult forEachRow(const QString &key, const ZELKDictionary &parameters,
                                  const RowHandler &handler);
    /// How the last statement ended that was run by executeStatement, forEachRow or for a setting.
    const ZELKDatabaseResult &lastResult() const { return m_lastResult; }

    /// Stores a setting; no value deletes it, and runs nothing more when there is none.
    void setString(const std::optional<QString> &value, const QString &setting);
    std::optional<QString> stringForSetting(const QString &setting);

protected:
    /// Before each attempt to open the file `path` (empty for a temporary database), while it may still be
    /// moved.
    virtual void databaseWillOpen(const QString &path);
    /// Once after each successful opening.
    virtual void databaseDidOpen();
    /// Just before closing. Statements that it prepares would keep the connection from closing; it drops
    /// them.
    virtual void databaseWillClose();

    /// Finalizes the statements and closes the connection; a failure is logged. Without a connection,
    /// nothing.
    void closeDatabase() noexcept;
    const ZELKBundle &bundle() const { return *m_bundle; }

private:
    void openDatabase();
    void closeConnection();
    void createDatabase();
    void recordVersion();
    std::shared_ptr<sqlite3_stmt> prepare(const QString &key);
    void bind(const QString &key, sqlite3_stmt *statement, const ZELKDictionary &parameters);
    void bindValue(const QString &key, sqlite3_stmt *statement, int index, const QString &name,
                   const QVariant &value);
    ZELKDatabaseResult run(const QString &key, const ZELKDictionary &parameters, const RowHandler &handler);
    ZELKDatabaseResult step(const QString &key, sqlite3_stmt *statement, const RowHandler &handler);
    bool canStepAgain(int code);
    [[noreturn]] void fail(const QString &message) const;

    std::shared_ptr<const ZELKBundle> m_bundle;
    std::shared_ptr<ZELKSQLitePort> m_port;
    QString m_cachesFolder;
    sqlite3 *m_database = nullptr;
    std::optional<ZELKDictionary> m_coreSQLStatements;
    PreparedStatements m_preparedStatement;
    std::vector<QString> m_running;
    ZELKDatabaseResult m_lastResult;
};
