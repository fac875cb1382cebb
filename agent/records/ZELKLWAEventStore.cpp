#include "ZELKLWAEventStore.h"

#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKConsole.h"
#include "ZELKDatabaseTransaction.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKLWADatabaseFile.h"
#include "ZELKSQLitePort.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <sqlite3.h>
#include <string>

namespace {

constexpr double secondsKeptExactly = 9.0e9; // whole microseconds of a double
constexpr qsizetype longestEvent = 1000000;
constexpr std::size_t eventsATransaction = 500;

constexpr QLatin1String file("agent/ZELKLWAEventStore");
constexpr QLatin1String createKey("ZELKDatabaseSQLCreate");
constexpr QLatin1String createEventsKey("ZELKLWAEventStoreSQLCreate");
constexpr QLatin1String insertKey("ZELKLWAEventStoreSQLInsert");
constexpr QLatin1String settleKey("ZELKLWAEventStoreSQLSettle");
constexpr QLatin1String unsettledKey("ZELKLWAEventStoreSQLUnsettled");
constexpr QLatin1String latestSettledKey("ZELKLWAEventStoreSQLLatestSettled");
constexpr QLatin1String beginKey("ZELKLWAEventStoreSQLBegin");
constexpr QLatin1String commitKey("ZELKLWAEventStoreSQLCommit");
constexpr QLatin1String rollbackKey("ZELKLWAEventStoreSQLRollback");

/// Settings.
constexpr QLatin1String servedSetting("served");

qint64 now()
{
    return ZELKLWATimeOf(ZELKEnvironment::current().clock->now());
}

} // namespace

ZELKLWAEventStore::ZELKLWAEventStore(const QString &path, std::shared_ptr<const ZELKBundle> bundle,
                                     std::shared_ptr<ZELKSQLitePort> port, Keeper keeper, QObject *parent)
    : QObject(parent)
    , ZELKDatabaseController(std::move(bundle), port)
    , m_path(path)
    , m_port(std::move(port))
    , m_keeper(keeper)
    , m_lifeSign(path + QLatin1String("-alive"))
{
    m_retry.setSingleShot(true);
    m_retry.setTimerType(Qt::VeryCoarseTimer);
    m_retry.setInterval(std::chrono::seconds(secondsBeforeRetry));
    connect(&m_retry, &QTimer::timeout, this, [this] { zelkGuard([&] { save(); }); });
}

ZELKLWAEventStore::~ZELKLWAEventStore()
{
    if (!m_waiting.empty())
        ZELKConsole::log(
            ZELKFormat("%lu events could not be kept in %@, and are lost.", {m_waiting.size(), m_path}));
    closeDatabase();
}

QUrl ZELKLWAEventStore::databaseURL()
{
    return QUrl::fromLocalFile(m_path);
}

/// A connection whose creation script fails costs a descriptor; so the scripts are tried on one that is
/// closed again.
void ZELKLWAEventStore::databaseWillOpen(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    const QString scripts = SQLForKey(createKey).value_or(QString()) + QLatin1Char('\n') +
                            SQLForKey(createEventsKey).value_or(QString());
    ZELKLWADatabaseFile databaseFile(path, m_port);
    auto fault = databaseFile.tryScript(scripts);
    if (fault && isReplaceable(fault->code) && databaseFile.setAside(fault->message)) {
        m_wasSetAside = true;
        fault = databaseFile.tryScript(scripts);
    }
    if (!fault)
        return;
    m_failure = fault->code;
    ZELKAssertion::fail(file, 0, fault->message);
}

bool ZELKLWAEventStore::isReplaceable(int code) const
{
    return m_keeper == Keeper::Agent && ZELKLWADatabaseFile::isDamage(code);
}

void ZELKLWAEventStore::databaseDidOpen()
{
    executeStatements(createEventsKey);
    require(forEachRow(latestSettledKey, {}, [this](const ZELKDatabaseRow &row) {
        m_settlingClock.passed(
            QByteArray(row.column(0).bytes.data(), qsizetype(row.column(0).bytes.size())).toLongLong());
        return true;
    }));
    m_settlingClock.passed(stringForSetting(servedSetting).value_or(QString()).toLongLong());
    if (m_keeper == Keeper::Agent && !stringForSetting(beginningSetting))
        beginRecords();
}

void ZELKLWAEventStore::record(const std::vector<ZELKLWAEvent> &events)
{
    bool taken = false;
    for (const ZELKLWAEvent &event : events)
        taken = take(event) || taken;
    if (taken && !save())
        Q_EMIT recorded(); // they can be read from memory
}

bool ZELKLWAEventStore::take(const ZELKLWAEvent &event)
{
    const bool dated = std::abs(event.date.timeIntervalSinceReferenceDate()) <= secondsKeptExactly;
    if (!dated || event.event.size() + event.monitor.size() + event.properties.size() > longestEvent) {
        ZELKConsole::log(ZELKFormat("Event '%@' of %@ can not be recorded: its %@ is out of bounds.",
                                    {event.event, event.monitor, dated ? "length" : "date"}));
        return false;
    }
    dropOldest();
    m_waiting.append(event);
    return true;
}

void ZELKLWAEventStore::dropOldest()
{
    if (m_waiting.size() < mostWaiting)
        return;
    if (m_failing) {
        m_waiting.drop(1);
        ++m_dropped;
    } else {
        save(); // more at once than may wait: not yet a reason to lose any
    }
}

bool ZELKLWAEventStore::save()
{
    std::size_t inserted = 0;
    bool wrote = false;
    bool anySettled = false;
    const bool saved = attempt([&] {
        for (; !m_waiting.empty(); wrote = true)
            inserted += writeSome();
        if (m_isSettlingDue) {
            anySettled = settleFile(m_settlingClock.next(now()));
            m_isSettlingDue = false;
            wrote = true;
        }
        if (m_dueServed) {
            write([&] { setString(QString::number(*m_dueServed), servedSetting); });
            m_dueServed.reset();
            wrote = true;
        }
    });
    if (!saved)
        tryAgainLater();
    else if (wrote)
        reportRecovery();
    if (inserted > 0)
        Q_EMIT recorded();
    if (anySettled)
        Q_EMIT settled();
    return saved;
}

void ZELKLWAEventStore::tryAgainLater()
{
    if (!m_retry.isActive())
        m_retry.start();
}

/// One transaction; how many of its events were new.
std::size_t ZELKLWAEventStore::writeSome()
{
    const std::size_t count = std::min(m_waiting.size(), eventsATransaction);
    std::size_t inserted = 0;
    write([&] {
        for (std::size_t i = 0; i < count; ++i)
            inserted += insert(m_waiting[i]) ? 1 : 0;
    });
    m_waiting.drop(count);
    return inserted;
}

/// A transaction, in which an agent also says that it is alive.
void ZELKLWAEventStore::write(const std::function<void()> &statements)
{
    ZELKDatabaseTransaction transaction(*this, beginKey, commitKey, rollbackKey);
    try {
        statements();
        require(lastResult());
        if (m_keeper == Keeper::Agent)
            setString(QString::number(now()), aliveSetting);
        require(lastResult());
        transaction.commit();
    } catch (...) {
        noteFailure(); // before the rollback replaces it
        throw;
    }
}

/// False when the event is recorded already.
bool ZELKLWAEventStore::insert(const ZELKLWAWaitingEvents::Waiting &waiting)
{
    bool inserted = false;
    const QString settled = waiting.settled ? QString::number(*waiting.settled) : QLatin1String("");
    const ZELKDictionary parameters{{QStringLiteral("@time"), QString::number(waiting.position.time)},
                                    {QStringLiteral("@event"), waiting.event.event},
                                    {QStringLiteral("@monitor"), waiting.event.monitor},
                                    {QStringLiteral("@properties"), waiting.event.properties},
                                    {QStringLiteral("@settled"), settled}};
    require(forEachRow(insertKey, parameters, [&](const ZELKDatabaseRow &) {
        inserted = true;
        return true;
    }));
    return inserted;
}

void ZELKLWAEventStore::settle()
{
    if (!isOpen())
        attempt([this] { database(); }); // it knows what settled before
    const qint64 time = m_settlingClock.next(now());
    bool any = m_waiting.settle(time);
    m_isSettlingDue = !attempt([&] { any = settleFile(time) || any; });
    if (m_isSettlingDue)
        tryAgainLater();
    if (any)
        Q_EMIT settled();
}

bool ZELKLWAEventStore::settleFile(qint64 time)
{
    bool any = false;
    write([&] {
        forEachRow(settleKey, {{QStringLiteral("@settled"), QString::number(time)}},
                   [&](const ZELKDatabaseRow &) { return any = true; });
    });
    return any;
}

bool ZELKLWAEventStore::hasUnsettled()
{
    bool any = m_waiting.hasUnsettled();
    attempt(
        [&] { require(forEachRow(unsettledKey, {}, [&](const ZELKDatabaseRow &) { return any = true; })); });
    return any;
}

void ZELKLWAEventStore::requestWillBeServed(const ZELKLWAEventRange &range)
{
    m_settlingClock.passed(std::min(range.to, now()));
    m_lifeSign.show(ZELKEnvironment::current().clock->now());
}

void ZELKLWAEventStore::requestWasServed(const ZELKLWAEventRange &range)
{
    m_dueServed = std::min(range.to, now());
    save();
}

void ZELKLWAEventStore::require(const ZELKDatabaseResult &result)
{
    if (!result.failed())
        return;
    m_failure = result.code;
    ZELKAssertion::fail(file, 0, QString::fromUtf8(m_port->errmsg(database())));
}

/// Runs work on the database, a second time when a damaged file was replaced. False and a line when it
/// failed.
bool ZELKLWAEventStore::attempt(const std::function<void()> &work)
{
    QString reason;
    for (int tries = 0; tries < 2; ++tries) {
        m_failure = SQLITE_OK;
        try {
            work();
            return true;
        } catch (const ZELKAssertionFailure &failure) {
            reason = failure.message();
        } catch (const std::exception &failure) {
            reason = QString::fromUtf8(failure.what());
        }
        noteFailure();
        if (!recover(reason))
            break;
    }
    reportFailure(reason);
    return false;
}

void ZELKLWAEventStore::noteFailure()
{
    if (m_failure == SQLITE_OK && isOpen())
        m_failure = m_port->extendedErrcode(database()) & 0xff;
}

/// Makes ready for the next try; true when that may be at once.
bool ZELKLWAEventStore::recover(const QString &reason)
{
    setPreparedStatement({});
    // A connection that was there before the disk was full can read on without room of its own.
    if (m_failure == SQLITE_FULL || m_failure == SQLITE_BUSY)
        return false;
    const bool wasOpen = isOpen(); // else the opening has seen to it
    closeDatabase();
    m_wasSetAside =
        wasOpen && isReplaceable(m_failure) && ZELKLWADatabaseFile(m_path, m_port).setAside(reason);
    return m_wasSetAside;
}

void ZELKLWAEventStore::reportFailure(const QString &reason)
{
    if (!m_failing)
        ZELKConsole::log(ZELKFormat("Events can not be kept in %@: %@. They wait in memory until they can.",
                                    {m_path, reason}));
    m_failing = true;
}

void ZELKLWAEventStore::reportRecovery()
{
    m_retry.stop();
    if (m_failing)
        ZELKConsole::log(ZELKFormat("Events are kept in %@ again; %lu were lost.", {m_path, m_dropped}));
    m_failing = false;
    m_dropped = 0;
}

ZELKLWAEventPage::End ZELKLWAEventStore::eventsAfter(ZELKLWAEventPosition after,
                                                     const ZELKLWAEventRange &range, int limit,
                                                     const ZELKLWAEventPage::Handler &handler)
{
    m_failure = SQLITE_OK;
    QString reason;
    try {
        const auto end = ZELKLWAEventPage(*this, m_waiting).read(after, range, limit, handler);
        if (end == ZELKLWAEventPage::End::Failed)
            require(lastResult());
        return end;
    } catch (const ZELKAssertionFailure &failure) {
        reason = failure.message();
    }
    noteFailure();
    ZELKConsole::log(ZELKFormat("Events can not be read from %@: %@.", {m_path, reason}));
    recover(reason);
    return ZELKLWAEventPage::End::Failed;
}
