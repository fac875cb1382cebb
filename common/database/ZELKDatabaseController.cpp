#include "ZELKDatabaseController.h"

#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKPropertyList.h"
#include "ZELKSQLitePort.h"

#include <QFile>
#include <QScopeGuard>
#include <QStandardPaths>

#include <sqlite3.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <utility>

using End = ZELKDatabaseResult::End;

namespace {

const QString sourceFile = QStringLiteral("common/database/ZELKDatabaseController");
const QString versionSetting = QStringLiteral("version");

QString resourceName()
{
    return QStringLiteral("ZELKDatabaseController");
}

} // namespace

ZELKDatabaseController::ZELKDatabaseController(std::shared_ptr<const ZELKBundle> bundle,
                                               std::shared_ptr<ZELKSQLitePort> port,
                                               const QString &cachesFolder)
    : m_bundle(std::move(bundle))
    , m_port(std::move(port))
    , m_cachesFolder(cachesFolder)
{
}

ZELKDatabaseController::~ZELKDatabaseController()
{
    closeDatabase();
}

QString ZELKDatabaseController::className() const
{
    return QStringLiteral("ZELKDatabaseController");
}

void ZELKDatabaseController::fail(const QString &message) const
{
    ZELKAssertion::fail(sourceFile, 0, message);
}

// Opening and closing

QUrl ZELKDatabaseController::databaseURL()
{
    const QString folder = m_cachesFolder.isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
                               : m_cachesFolder;
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(folder).toStdString(), error);
    if (error)
        fail(ZELKFormat("%@ 'Caches' folder unavailable: %@", {className(), error.message().c_str()}));
    const QString identifier = m_bundle->bundleIdentifier();
    if (identifier.isEmpty())
        fail(ZELKFormat("%@ Info.plist missing %@", {className(), "CFBundleIdentifier"}));
    return QUrl::fromLocalFile(folder + QLatin1Char('/') + identifier + QLatin1String(".db"));
}

void ZELKDatabaseController::databaseWillOpen(const QString &) {}

void ZELKDatabaseController::databaseDidOpen() {}

void ZELKDatabaseController::databaseWillClose() {}

sqlite3 *ZELKDatabaseController::database()
{
    if (m_database)
        return m_database;
    openDatabase();
    createDatabase();
    if (!m_database)
        return nullptr;
    try {
        recordVersion();
        databaseDidOpen();
    } catch (...) {
        closeDatabase();
        throw;
    }
    return m_database;
}

void ZELKDatabaseController::openDatabase()
{
    const QString path = databaseURL().toLocalFile();
    databaseWillOpen(path);
    const int code = m_port->open(QFile::encodeName(path).constData(), &m_database);
    if (code == SQLITE_OK)
        return;
    const QString message =
        ZELKFormat("%@ open failed: %s (%d)", {className(), m_port->errmsg(m_database), code});
    m_port->close(std::exchange(m_database, nullptr));
    fail(message);
}

void ZELKDatabaseController::createDatabase()
{
    bool created = false;
    const auto giveUp = qScopeGuard([&] {
        if (!created)
            m_port->free(std::exchange(m_database, nullptr));
    });
    created = executeStatements(QStringLiteral("ZELKDatabaseSQLCreate"));
}

/// An existing database keeps the version it was created with, so a read that failed proves no absence.
void ZELKDatabaseController::recordVersion()
{
    if (databaseVersion() || m_lastResult.failed())
        return;
    const QVariant version = m_bundle->objectForInfoDictionaryKey(QStringLiteral("CFBundleVersion"));
    if (version.isValid())
        setString(version.toString(), versionSetting);
}

void ZELKDatabaseController::setDatabase(sqlite3 *database)
{
    if (database == m_database)
        return;
    if (m_database) {
        databaseWillClose();
        closeConnection();
    }
    m_database = database;
}

void ZELKDatabaseController::closeConnection()
{
    const int code = m_port->close(m_database);
    if (code != SQLITE_OK)
        fail(ZELKFormat("%@ close failed: %s (%d)", {className(), m_port->errmsg(m_database), code}));
    m_database = nullptr;
}

void ZELKDatabaseController::closeDatabase() noexcept
{
    m_preparedStatement.clear();
    if (!m_database)
        return;
    zelkGuard([this] { databaseWillClose(); });
    m_preparedStatement.clear();
    zelkGuard([this] { closeConnection(); });
}

bool ZELKDatabaseController::isInTransaction() const
{
    return m_database && m_port->getAutocommit(m_database) == 0;
}

// Statements

const ZELKDictionary &ZELKDatabaseController::coreSQLStatements()
{
    if (m_coreSQLStatements)
        return *m_coreSQLStatements;
    const QString path = m_bundle->pathForResource(resourceName(), QStringLiteral("plist"));
    ZELKDictionary statements;
    if (!path.isEmpty()) {
        QFile file(path);
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const QVariant value = ZELKPropertyList::read({bytes.constData(), size_t(bytes.size())}).value;
        if (!value.canConvert<ZELKDictionary>())
            fail(ZELKFormat("%@ resource is malformed: %@",
                            {className(), QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)}));
        statements = value.value<ZELKDictionary>();
    }
    return m_coreSQLStatements.emplace(std::move(statements));
}

std::optional<QString> ZELKDatabaseController::SQLForKey(const QString &key)
{
    for (const ZELKDictionary *statements : {&coreSQLStatements(), &m_bundle->infoDictionary()})
        if (const QVariant sql = statements->value(key); sql.typeId() == QMetaType::QString)
            return sql.toString();
    fail(ZELKFormat("%@ Missing Info.plist property '%@'", {className(), nullptr}));
}

std::shared_ptr<sqlite3_stmt> ZELKDatabaseController::statementForKey(const QString &key)
{
    auto cached = m_preparedStatement.find(key);
    if (cached == m_preparedStatement.end())
        cached = m_preparedStatement.emplace(key, prepare(key)).first;
    const std::shared_ptr<sqlite3_stmt> statement = cached->second;
    if (const int code = m_port->reset(statement.get()); code != SQLITE_OK)
        fail(ZELKFormat("%@ reset '%@' failed: %s (%d)",
                        {className(), key, m_port->errmsg(m_database), code}));
    return statement;
}

std::shared_ptr<sqlite3_stmt> ZELKDatabaseController::prepare(const QString &key)
{
    const std::optional<QString> sql = SQLForKey(key);
    if (!sql)
        fail(ZELKFormat("%@ Info.plist missing %@", {className(), key}));
    sqlite3 *const connection = database();
    sqlite3_stmt *statement = nullptr;
    const int code = m_port->prepare(connection, sql->toUtf8().constData(), &statement);
    const std::shared_ptr<sqlite3_stmt> owner(statement, [port = m_port](sqlite3_stmt *prepared) {
        if (prepared)
            port->finalize(prepared);
    });
    if (code != SQLITE_OK || !statement)
        fail(ZELKFormat("%@ prepare failed: %s (%d)", {className(), m_port->errmsg(connection), code}));
    return owner;
}

bool ZELKDatabaseController::executeStatements(const QString &key)
{
    if (key.isNull())
        ZELKAssertion::failParameter(sourceFile, 0, "anInfoPListKey");
    const std::optional<QString> sql = SQLForKey(key);
    if (!sql)
        fail(ZELKFormat("%@ Info.plist missing %@", {className(), key}));
    char *error = nullptr;
    const int code = m_port->exec(database(), sql->toUtf8().constData(), &error);
    const auto release = qScopeGuard([&] {
        if (error)
            m_port->free(error);
    });
    if (code != SQLITE_OK)
        fail(ZELKFormat("%@ SQL '%@' failed: %s (%d)", {className(), *sql, error, code}));
    return true;
}

std::optional<ZELKDatabaseController::Rows>
ZELKDatabaseController::executeStatement(const QString &key, const ZELKDictionary &parameters)
{
    std::optional<Rows> rows;
    run(key, parameters, [&](const ZELKDatabaseRow &row) {
        if (!rows)
            rows.emplace();
        if (row.count() >= 1)
            rows->append(row.dictionary());
        return true;
    });
    return rows;
}

ZELKDatabaseResult ZELKDatabaseController::forEachRow(const QString &key, const ZELKDictionary &parameters,
                                                      const RowHandler &handler)
{
    return run(key, parameters, [&](const ZELKDatabaseRow &row) { return row.count() < 1 || handler(row); });
}

ZELKDatabaseResult ZELKDatabaseController::run(const QString &key, const ZELKDictionary &parameters,
                                               const RowHandler &handler)
{
    if (key.isNull())
        ZELKAssertion::failParameter(sourceFile, 0, "anInfoPListKey");
    // A run within the handler of a run of the same key gets a statement of its own.
    if (std::ranges::find(m_running, key) != m_running.end())
        m_preparedStatement.erase(key);
    const std::shared_ptr<sqlite3_stmt> statement = statementForKey(key);
    bind(key, statement.get(), parameters);

    m_running.push_back(key);
    bool halted = false;
    const auto leave = qScopeGuard([&] {
        m_running.pop_back();
        // Left in mid-run, by its handler or by BUSY, a statement would hold its read lock until its next
        // use.
        if (!halted)
            m_port->reset(statement.get());
    });
    const ZELKDatabaseResult result = step(key, statement.get(), handler);
    halted = result.end != End::Stopped && result.code != SQLITE_BUSY;
    return m_lastResult = result;
}

void ZELKDatabaseController::bind(const QString &key, sqlite3_stmt *statement,
                                  const ZELKDictionary &parameters)
{
    const int count = m_port->bindParameterCount(statement);
    if (parameters.size() != count)
        fail(ZELKFormat("%@ Statement '%@' expects %d parameters, but got %d in %@.",
                        {className(), key, count, parameters.size(), QVariant::fromValue(parameters)}));
    for (int index = 1; index <= count; ++index) {
        const QString name = QString::fromUtf8(m_port->bindParameterName(statement, index));
        if (name.isEmpty())
            continue;
        const QVariant value = parameters.value(name);
        if (!value.isValid())
            fail(ZELKFormat("%@ Parameter '%@' is required for statement '%@'.", {className(), name, key}));
        bindValue(key, statement, index, name, value);
    }
}

void ZELKDatabaseController::bindValue(const QString &key, sqlite3_stmt *statement, int index,
                                       const QString &name, const QVariant &value)
{
    if (value.typeId() == QMetaType::QString) {
        const int code = m_port->bindText(statement, index, value.toString().toUtf8().constData());
        if (code != SQLITE_OK)
            fail(ZELKFormat("%@ text bind '%@' failed: %d", {className(), name, code}));
    } else if (value.typeId() == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        // SQLite refuses INT_MAX bytes as too many, and so everything above.
        const int size = int(std::min<qsizetype>(bytes.size(), INT_MAX));
        const int code = m_port->bindBlob(statement, index, bytes.constData(), size);
        if (code != SQLITE_OK)
            fail(ZELKFormat("%@ blob bind '%@' failed: %d", {className(), name, code}));
    } else {
        fail(ZELKFormat("%@ Parameter '%@' is in an unsupported format for statement '%@'.",
                        {className(), name, key}));
    }
}

ZELKDatabaseResult ZELKDatabaseController::step(const QString &key, sqlite3_stmt *statement,
                                                const RowHandler &handler)
{
    for (;;) {
        const int code = m_port->step(statement) & 0xff;
        if (code == SQLITE_ROW) {
            if (!handler(ZELKDatabaseRow(*m_port, statement)))
                return {End::Stopped, code};
        } else if (code == SQLITE_DONE || code == SQLITE_OK) {
            return {End::Done, code};
        } else if (!canStepAgain(code)) {
            ZELKConsole::log(ZELKFormat("%@ statement '%@' failed: %s (%d)",
                                        {className(), key, m_port->errmsg(m_database), code}));
            return {End::Failed, code};
        }
    }
}

/// Whether a further step can meet a database that has changed. BUSY_SNAPSHOT is told apart: it says that our
/// own open read is older than the database, and that stays so for as long as we go on reading.
bool ZELKDatabaseController::canStepAgain(int code)
{
    switch (code) {
    case SQLITE_BUSY:
        return m_port->extendedErrcode(m_database) != SQLITE_BUSY_SNAPSHOT;
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
    case SQLITE_SCHEMA:
        return true;
    default:
        return false;
    }
}

// Settings

void ZELKDatabaseController::setString(const std::optional<QString> &value, const QString &setting)
{
    if (setting.isNull())
        ZELKAssertion::failParameter(sourceFile, 0, "aSetting");
    const QString keyName = QStringLiteral("@key");
    if (value)
        executeStatement(QStringLiteral("ZELKDatabaseSQLSettingInsert"),
                         {{keyName, setting}, {QStringLiteral("@value"), *value}});
    else if (stringForSetting(setting))
        executeStatement(QStringLiteral("ZELKDatabaseSQLSettingDelete"), {{keyName, setting}});
}

std::optional<QString> ZELKDatabaseController::stringForSetting(const QString &setting)
{
    if (setting.isNull())
        ZELKAssertion::failParameter(sourceFile, 0, "aSetting");
    const std::optional<Rows> rows =
        executeStatement(QStringLiteral("ZELKDatabaseSQLSettingSelect"), {{QStringLiteral("@key"), setting}});
    if (!rows || rows->isEmpty())
        return std::nullopt;
    const QVariant value = rows->last().value(QStringLiteral("value"));
    return value.isValid() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QString> ZELKDatabaseController::databaseVersion()
{
    return stringForSetting(versionSetting);
}
