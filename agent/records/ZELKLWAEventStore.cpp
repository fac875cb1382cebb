#include "ZELKLWAEventStore.h"

#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKConsole.h"
#include "ZELKDatabaseTransaction.h"
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

constexpr double microseconds = 1e6;
constexpr double secondsKeptExactly = 9.0e9; // whole microseconds of a double
constexpr qsizetype longestEvent = 1000000;
constexpr std::size_t eventsATransaction = 500;
/// Rows of events that wait are counted from here, so that they stand after those in the file.
constexpr qint64 firstWaitingRow = qint64(1) << 62;

constexpr QLatin1String file("agent/ZELKLWAEventStore");
constexpr QLatin1String createKey("ZELKDatabaseSQLCreate");
constexpr QLatin1String createEventsKey("ZELKLWAEventStoreSQLCreate");
constexpr QLatin1String insertKey("ZELKLWAEventStoreSQLInsert");
constexpr QLatin1String selectKey("ZELKLWAEventStoreSQLSelect");
constexpr QLatin1String beginKey("ZELKLWAEventStoreSQLBegin");
constexpr QLatin1String commitKey("ZELKLWAEventStoreSQLCommit");
constexpr QLatin1String rollbackKey("ZELKLWAEventStoreSQLRollback");

/// The date of a raw event, "%lf", without a detour through a double.
class DateText
{
public:
    explicit DateText(qint64 time)
    {
        const quint64 size = time < 0 ? quint64(0) - quint64(time) : quint64(time);
        m_length = std::snprintf(m_text, sizeof m_text, "%s%llu.%06llu", time < 0 ? "-" : "",
                                 size / 1000000ULL, size % 1000000ULL);
    }
    std::string_view view() const { return {m_text, std::size_t(m_length)}; }

private:
    char m_text[32];
    int m_length;
};

qint64 numberIn(const ZELKDatabaseRow &row, int column)
{
    const std::string_view text = row.column(column).bytes;
    qint64 number = std::numeric_limits<qint64>::min();
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

} // namespace

ZELKLWAEventStore::ZELKLWAEventStore(const QString &path, std::shared_ptr<const ZELKBundle> bundle,
                                     std::shared_ptr<ZELKSQLitePort> port, QObject *parent)
    : QObject(parent)
    , ZELKDatabaseController(std::move(bundle), port)
    , m_path(path)
    , m_port(std::move(port))
{
    m_retry.setSingleShot(true);
    m_retry.setTimerType(Qt::VeryCoarseTimer);
    m_retry.setInterval(std::chrono::seconds(secondsBeforeRetry));
    connect(&m_retry, &QTimer::timeout, this, [this] { zelkGuard([&] { save(); }); });
}

ZELKLWAEventStore::~ZELKLWAEventStore()
{
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
    if (fault && ZELKLWADatabaseFile::isDamage(fault->code) && databaseFile.setAside(fault->message))
        fault = databaseFile.tryScript(scripts);
    if (!fault)
        return;
    m_failure = fault->code;
    ZELKAssertion::fail(file, 0, fault->message);
}

void ZELKLWAEventStore::databaseDidOpen()
{
    executeStatements(createEventsKey);
}

qint64 ZELKLWAEventStore::timeOf(ZELKDate date)
{
    constexpr double bound = 9.2e18;
    const double time = date.timeIntervalSinceReferenceDate() * microseconds;
    if (!(time > -bound))
        return std::numeric_limits<qint64>::min();
    return time < bound ? std::llround(time) : std::numeric_limits<qint64>::max();
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
    m_waiting.push_back({{timeOf(event.date), firstWaitingRow + m_arrivals++}, event});
    return true;
}

void ZELKLWAEventStore::dropOldest()
{
    if (m_waiting.size() < mostWaiting)
        return;
    if (m_failing) {
        m_waiting.pop_front();
        ++m_dropped;
    } else {
        save(); // more at once than may wait: not yet a reason to lose any
    }
}

bool ZELKLWAEventStore::save()
{
    std::size_t inserted = 0;
    const bool saved = attempt([&] {
        while (!m_waiting.empty())
            inserted += writeSome();
    });
    if (saved)
        reportRecovery();
    else if (!m_retry.isActive())
        m_retry.start();
    if (inserted > 0)
        Q_EMIT recorded();
    return saved;
}

/// One transaction; how many of its events were new.
std::size_t ZELKLWAEventStore::writeSome()
{
    const std::size_t count = std::min(m_waiting.size(), eventsATransaction);
    std::size_t inserted = 0;
    ZELKDatabaseTransaction transaction(*this, beginKey, commitKey, rollbackKey);
    try {
        for (std::size_t i = 0; i < count; ++i)
            inserted += insert(m_waiting[i]) ? 1 : 0;
        transaction.commit();
    } catch (...) {
        noteFailure(); // before the rollback replaces it
        throw;
    }
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + std::ptrdiff_t(count));
    return inserted;
}

/// False when the event is recorded already.
bool ZELKLWAEventStore::insert(const Waiting &waiting)
{
    bool inserted = false;
    const ZELKDictionary parameters{{QStringLiteral("@time"), QString::number(waiting.position.time)},
                                    {QStringLiteral("@event"), waiting.event.event},
                                    {QStringLiteral("@monitor"), waiting.event.monitor},
                                    {QStringLiteral("@properties"), waiting.event.properties}};
    const ZELKDatabaseResult result = forEachRow(insertKey, parameters, [&](const ZELKDatabaseRow &) {
        inserted = true;
        return true;
    });
    if (result.failed()) {
        m_failure = result.code;
        ZELKAssertion::fail(file, 0, QString::fromUtf8(m_port->errmsg(database())));
    }
    return inserted;
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
    return wasOpen && ZELKLWADatabaseFile::isDamage(m_failure) &&
           ZELKLWADatabaseFile(m_path, m_port).setAside(reason);
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

ZELKLWAEventStore::Reading ZELKLWAEventStore::eventsAfter(ZELKLWAEventPosition after, qint64 to, int limit,
                                                          const EventHandler &handler)
{
    m_failure = SQLITE_OK;
    QString reason;
    try {
        return readAfter(after, to, limit, handler);
    } catch (const ZELKAssertionFailure &failure) {
        reason = failure.message();
    }
    noteFailure();
    ZELKConsole::log(ZELKFormat("Events can not be read from %@: %@.", {m_path, reason}));
    recover(reason);
    return Reading::Failed;
}

ZELKLWAEventStore::Reading ZELKLWAEventStore::readAfter(ZELKLWAEventPosition after, qint64 to, int limit,
                                                        const EventHandler &handler)
{
    int shown = 0;
    const auto show = [&](ZELKLWAEventPosition position, const ZELKRawEventView &texts) {
        after = position;
        return handler(position, texts) && ++shown < limit;
    };
    const std::vector<const Waiting *> waiting = waitingAfter(after, to);
    auto next = waiting.begin();
    const auto showWaitingBefore = [&](ZELKLWAEventPosition position) {
        for (; next != waiting.end() && (*next)->position < position; ++next) {
            const std::string event = (*next)->event.event.toStdString();
            const std::string monitor = (*next)->event.monitor.toStdString();
            const std::string properties = (*next)->event.properties.toStdString();
            const DateText date((*next)->position.time);
            if (!show((*next)->position, {date.view(), event, monitor, properties}))
                return false;
        }
        return true;
    };
    const ZELKDictionary parameters{{QStringLiteral("@time"), QString::number(after.time)},
                                    {QStringLiteral("@row"), QString::number(after.row)},
                                    {QStringLiteral("@to"), QString::number(to)},
                                    {QStringLiteral("@limit"), QString::number(limit)}};
    const ZELKDatabaseResult result = forEachRow(selectKey, parameters, [&](const ZELKDatabaseRow &row) {
        const ZELKLWAEventPosition position{numberIn(row, 0), numberIn(row, 1)};
        if (!showWaitingBefore(position))
            return false;
        if (position <= after)
            ZELKAssertion::fail(file, 0, QStringLiteral("the events are out of order"));
        const DateText date(position.time);
        return show(position, {date.view(), row.column(2).bytes, row.column(3).bytes, row.column(4).bytes});
    });
    if (result.failed()) {
        m_failure = result.code;
        ZELKAssertion::fail(file, 0, QString::fromUtf8(m_port->errmsg(database())));
    }
    if (result.end == ZELKDatabaseResult::End::Stopped)
        return Reading::Stopped;
    constexpr qint64 last = std::numeric_limits<qint64>::max();
    return showWaitingBefore({last, last}) ? Reading::Complete : Reading::Stopped;
}

std::vector<const ZELKLWAEventStore::Waiting *> ZELKLWAEventStore::waitingAfter(ZELKLWAEventPosition after,
                                                                                qint64 to) const
{
    std::vector<const Waiting *> result;
    for (const Waiting &waiting : m_waiting)
        if (waiting.position > after && waiting.position.time <= to)
            result.push_back(&waiting);
    std::sort(result.begin(), result.end(),
              [](const Waiting *a, const Waiting *b) { return a->position < b->position; });
    return result;
}
