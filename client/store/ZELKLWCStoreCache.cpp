#include "ZELKLWCStoreCache.h"

#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKDamagedDatabase.h"
#include "ZELKDatabaseTransaction.h"
#include "ZELKEventVocabulary.h"
#include "ZELKRawEventWriter.h"
#include "ZELKValue.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <cmath>

namespace {

QString lastSyncSetting()
{
    return QStringLiteral("lastSync");
}

/// "session" or "system". A cache without it is from when there was no agent but the session's.
QString lastSyncAgentSetting()
{
    return QStringLiteral("lastSyncAgent");
}

/// The "lastSync" of the agent before.
QString otherSyncSetting()
{
    return QStringLiteral("otherAgentSync");
}

QString nameOf(ZELKLWCStoreCache::Agent agent)
{
    return agent == ZELKLWCStoreCache::Agent::OnSystemBus ? QStringLiteral("system")
                                                          : QStringLiteral("session");
}

QVariant stored(const ZELKDatabaseColumn &column)
{
    const QByteArray bytes(column.bytes.data(), qsizetype(column.bytes.size()));
    return column.kind == ZELKDatabaseColumn::Kind::Text ? QVariant(QString::fromUtf8(bytes))
                                                         : QVariant(bytes);
}

ZELKRawEvent rawEvent(const ZELKRawEventView &view)
{
    const auto text = [](std::string_view utf8) {
        return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
    };
    return {{ZELKEventKeyDate, text(view.date)},
            {ZELKEventKeyDescription, text(view.description)},
            {ZELKEventKeyMonitor, text(view.monitor)},
            {ZELKEventKeyProperties, text(view.properties)}};
}

} // namespace

ZELKLWCStoreCache::ZELKLWCStoreCache(std::shared_ptr<const ZELKBundle> bundle,
                                     std::shared_ptr<ZELKSQLitePort> port, const QString &databaseFile,
                                     bool setsAside)
    : ZELKDatabaseController(std::move(bundle), port)
    , m_databaseFile(databaseFile)
    , m_setsAside(setsAside)
    , m_sqlite(std::move(port))
{
}

ZELKLWCStoreCache::~ZELKLWCStoreCache()
{
    closeDatabase();
}

void ZELKLWCStoreCache::fail(const QString &message) const
{
    ZELKAssertion::fail(QStringLiteral("client/ZELKLWCStore"), 0, message);
}

// MARK: the file

QUrl ZELKLWCStoreCache::databaseURL()
{
    if (!m_databaseFile.isEmpty()) {
        QDir().mkpath(QFileInfo(m_databaseFile).absolutePath());
        return QUrl::fromLocalFile(QFileInfo(m_databaseFile).absoluteFilePath());
    }
    const QString key = QStringLiteral("CFBundleName");
    const QString name = bundle().objectForInfoDictionaryKey(key).toString();
    if (name.isEmpty())
        fail(ZELKFormat("%@ Info.plist missing %@", {className(), key}));
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder))
        return {};
    return QUrl::fromLocalFile(QDir(folder).filePath(name + QStringLiteral(".lullwatch-events")));
}

void ZELKLWCStoreCache::databaseWillOpen(const QString &path)
{
    m_openedPath = path;
    if (QFileInfo(path).size() == 0)
        return;
    if (!ZELKDamagedDatabase::isDamaged(*m_sqlite, path)) {
        if (ZELKDamagedDatabase::isOthers(*m_sqlite, path))
            fail(ZELKFormat("%@ is a database of another program.", {path}));
        return;
    }
    if (!ZELKDamagedDatabase::wasCache(path))
        fail(ZELKFormat("%@ is no database.", {path}));
    if (!m_setsAside)
        fail(ZELKFormat("%@ is damaged.", {path}));
    ZELKDamagedDatabase::setAside(path);
}

void ZELKLWCStoreCache::databaseDidOpen()
{
    executeStatements(QStringLiteral("ZELKLWCStoreSQLCreate"));
}

void ZELKLWCStoreCache::recover(bool raised)
{
    if (!isOpen()) // a file is looked at when it is opened
        return;
    setPreparedStatement({}); // the one that failed would raise its failure again
    const bool damaged = raised ? ZELKDamagedDatabase::isDamaged(*m_sqlite, m_openedPath)
                                : ZELKDamagedDatabase::isToldBy(lastResult().code);
    if (damaged || isInTransaction())
        closeDatabase();
    if (damaged && m_setsAside && !isOpen())
        ZELKDamagedDatabase::setAside(m_openedPath);
}

// MARK: writing

ZELKLWCStoreCache::CacheRow ZELKLWCStoreCache::serialised(const ZELKRawEvent &event) const
{
    const ZELKPropertyList::Written written = ZELKRawEventWriter::write(event);
    if (!written.error.isEmpty() || written.bytes.isEmpty())
        fail(ZELKFormat("%@ serialization of '%@' failed %@.",
                        {className(), QVariant::fromValue(event),
                         written.error.isEmpty() ? QVariant() : QVariant(written.error)}));
    const QVariant date = event.value(ZELKEventKeyDate);
    return {date.isValid() ? ZELKValue::description(date) : QString(), written.bytes};
}

bool ZELKLWCStoreCache::insert(const CacheRow &row)
{
    executeStatement(QStringLiteral("ZELKLWCStoreSQLCacheInsert"),
                     {{QStringLiteral("@date"), row.date.isNull() ? QVariant() : QVariant(row.date)},
                      {QStringLiteral("@properties"), row.properties}});
    return !lastResult().failed();
}

bool ZELKLWCStoreCache::inTransaction(const std::function<bool()> &write)
{
    if (isInTransaction()) // what an earlier failure left, and could not close either
        closeDatabase();
    bool written = false;
    const bool raised = !zelkGuard([&] {
        ZELKDatabaseTransaction transaction(*this, QStringLiteral("ZELKLWCStoreSQLBegin"),
                                            QStringLiteral("ZELKLWCStoreSQLCommit"),
                                            QStringLiteral("ZELKLWCStoreSQLRollback"));
        written = write();
        if (written)
            transaction.commit();
    });
    if (raised || !written)
        recover(raised);
    return !raised && written;
}

bool ZELKLWCStoreCache::writeRows(const std::vector<CacheRow> &rows, std::optional<LastSync> lastSync)
{
    return inTransaction([&] {
        for (const CacheRow &row : rows)
            if (!insert(row))
                return false;
        if (!lastSync)
            return true;
        setLastSyncDate(lastSync->date, lastSync->agent);
        return !lastResult().failed();
    });
}

bool ZELKLWCStoreCache::cacheEvent(const std::optional<ZELKRawEvent> &anEvent)
{
    if (!anEvent)
        ZELKAssertion::failParameter(QStringLiteral("client/ZELKLWCStore"), 0, "anEvent");
    return writeRows({serialised(*anEvent)}, std::nullopt);
}

bool ZELKLWCStoreCache::cacheEvents(const std::optional<QList<ZELKRawEvent>> &someEvents)
{
    if (!someEvents)
        ZELKAssertion::failParameter(QStringLiteral("client/ZELKLWCStore"), 0, "someEvents");
    constexpr qsizetype pieceSize = eventsInTransaction;
    bool written = true;
    for (qsizetype first = 0; written && first < someEvents->size(); first += pieceSize) {
        std::vector<CacheRow> rows;
        for (const ZELKRawEvent &event : someEvents->mid(first, pieceSize))
            rows.push_back(serialised(event));
        written = writeRows(rows, std::nullopt);
    }
    return written;
}

std::uint64_t ZELKLWCStoreCache::changeCount()
{
    const std::optional<Rows> rows = executeStatement(QStringLiteral("ZELKLWCStoreSQLChanges"), {});
    return rows && !rows->isEmpty() ? rows->constFirst().value(QStringLiteral("count")).toULongLong() : 0;
}

// MARK: the last synchronisation

ZELKDate ZELKLWCStoreCache::lastSyncDate()
{
    const std::optional<QString> seconds = stringForSetting(lastSyncSetting());
    if (lastResult().failed())
        recover(false);
    const double number = seconds ? seconds->toDouble() : 0.0;
    return seconds && std::isfinite(number) ? ZELKDate(number) : ZELKDate::distantPast();
}

ZELKDate ZELKLWCStoreCache::lastSyncDateWith(Agent agent)
{
    const ZELKDate date = lastSyncDate();
    if (lastResult().failed())
        return date;
    const QString whose = stringForSetting(lastSyncAgentSetting()).value_or(nameOf(Agent::OnSessionBus));
    if (lastResult().failed())
        recover(false);
    return whose == nameOf(agent) ? date : ZELKDate::distantPast();
}

std::optional<QString> ZELKLWCStoreCache::lastSyncOfFormer(Agent agent)
{
    const auto last = stringForSetting(lastSyncSetting());
    const QString whose = stringForSetting(lastSyncAgentSetting()).value_or(nameOf(Agent::OnSessionBus));
    return whose == nameOf(agent) ? std::nullopt : last;
}

std::optional<ZELKDate> ZELKLWCStoreCache::lastSyncDateOfOther(Agent agent)
{
    auto seconds = lastSyncOfFormer(agent);
    if (!seconds)
        seconds = stringForSetting(otherSyncSetting());
    const double number = seconds ? seconds->toDouble() : 0.0;
    return seconds && std::isfinite(number) ? std::optional(ZELKDate(number)) : std::nullopt;
}

void ZELKLWCStoreCache::setLastSyncDate(std::optional<ZELKDate> date, Agent agent)
{
    if (date) {
        const auto former = lastSyncOfFormer(agent);
        if (former && !lastResult().failed())
            setString(former, otherSyncSetting());
        if (lastResult().failed())
            return;
    }
    setString(date ? std::optional(ZELKDateText(*date)) : std::nullopt, lastSyncSetting());
    if (!lastResult().failed())
        setString(date ? std::optional(nameOf(agent)) : std::nullopt, lastSyncAgentSetting());
}

// MARK: reading

ZELKDatabaseResult ZELKLWCStoreCache::readRows(std::optional<ZELKDate> from, std::optional<ZELKDate> to,
                                               const RowHandler &handler)
{
    const ZELKDictionary period{
        {QStringLiteral("@from"), ZELKDateText(from.value_or(ZELKDate(0.0)))},
        {QStringLiteral("@to"), ZELKDateText(to.value_or(ZELKDate::distantFuture()))}};
    ZELKDatabaseResult result;
    try {
        result = forEachRow(QStringLiteral("ZELKLWCStoreSQLCacheSelect"), period, handler);
    } catch (...) {
        recover(true);
        throw;
    }
    if (result.failed())
        recover(false);
    return result;
}

ZELKLWCStoreCache::UnreadableRow ZELKLWCStoreCache::unreadableRow(const ZELKDatabaseRow &row,
                                                                  const QString &error)
{
    return {stored(row.column(1)).toString(), stored(row.column(0)), error};
}

void ZELKLWCStoreCache::failToInflate(const UnreadableRow &row) const
{
    fail(ZELKFormat("%@ inflation of '%@' failed %@.",
                    {className(), row.stored, row.error.isEmpty() ? QVariant() : QVariant(row.error)}));
}

void ZELKLWCStoreCache::setRowAside(const UnreadableRow &row)
{
    inTransaction([&] {
        for (const char *key : {"ZELKLWCStoreSQLCacheSetAside", "ZELKLWCStoreSQLCacheRemove"}) {
            executeStatement(QString::fromLatin1(key), {{QStringLiteral("@rowid"), row.number}});
            if (lastResult().failed())
                return false;
        }
        return true;
    });
}

QList<ZELKRawEvent> ZELKLWCStoreCache::sortedCachedEventsFromDate(std::optional<ZELKDate> from,
                                                                  std::optional<ZELKDate> to)
{
    QList<ZELKRawEvent> events;
    std::optional<UnreadableRow> unreadable;
    ZELKRawEventReader reader;
    readRows(from, to, [&](const ZELKDatabaseRow &row) {
        switch (reader.read(row.column(0).bytes)) {
        case ZELKRawEventReader::Kind::Texts:
            events.append(rawEvent(reader.view()));
            return true;
        case ZELKRawEventReader::Kind::Dictionary:
            events.append(reader.dictionary());
            return true;
        case ZELKRawEventReader::Kind::Faulty:
            unreadable = unreadableRow(row, reader.error());
            return false;
        }
        return false;
    });
    if (unreadable) {
        setRowAside(*unreadable);
        failToInflate(*unreadable);
    }
    return events;
}
