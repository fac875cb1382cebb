#include "ZELKLWAEventStore.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"

#include <algorithm>

// When the records began, what they hold of the time before, and how the agent before this one ended.

namespace {

constexpr QLatin1String lastOfKey("ZELKLWAEventStoreSQLLastOf");
constexpr QLatin1String ownKey("ZELKLWAEventStoreSQLOwn");
constexpr QLatin1String likeKey("ZELKLWAEventStoreSQLLike");

// Settings.
constexpr QLatin1String pastSetting("past");
constexpr QLatin1String journalSetting("journal"); // up to when it was read
constexpr QLatin1String accountingSetting("accounting");

QString setAsideValue()
{
    return QStringLiteral("set aside");
}

bool isStarting(std::string_view event)
{
    return event == std::string_view(ZELKEventStartingMonitor.data(), ZELKEventStartingMonitor.size());
}

qint64 now()
{
    return ZELKLWATimeOf(ZELKEnvironment::current().clock->now());
}

} // namespace

/// What was set aside had read the past, and clients have it; read again, its sleeps would stand beside those
/// that were recorded as they happened.
void ZELKLWAEventStore::beginRecords()
{
    setString(QString::number(now()), beginningSetting);
    if (!std::exchange(m_wasSetAside, false))
        return;
    setString(setAsideValue(), pastSetting);
    QTimer::singleShot(0, this,
                       [this] { zelkGuard([&] { Q_EMIT begunAnew(); }); }); // not in the middle of a write
}

std::optional<ZELKDate> ZELKLWAEventStore::unrecordedEnd()
{
    std::optional<ZELKDate> end;
    attempt([&] {
        bool isStart = false;
        require(forEachRow(lastOfKey, {{QStringLiteral("@monitor"), ZELKMonitorLullwatch}},
                           [&](const ZELKDatabaseRow &row) {
                               isStart = isStarting(row.column(0).bytes);
                               return true;
                           }));
        if (!isStart)
            return;
        const qint64 written = stringForSetting(aliveSetting).value_or(QString()).toLongLong();
        const qint64 seen = ZELKLWATimeOf(m_lifeSign.last().value_or(ZELKDate::distantPast()));
        end = ZELKDate(double(std::min(std::max(written, seen), now())) / 1e6);
    });
    return end;
}

ZELKLWAPeriods ZELKLWAEventStore::recordedPeriods()
{
    ZELKLWAPeriods periods;
    const ZELKDate present = ZELKEnvironment::current().clock->now();
    attempt([&] {
        std::optional<ZELKDate> begin;
        periods.clear();
        require(forEachRow(
            ownKey, {{QStringLiteral("@monitor"), ZELKMonitorLullwatch}}, [&](const ZELKDatabaseRow &row) {
                const std::string_view time = row.column(0).bytes;
                const ZELKDate date(QByteArray(time.data(), qsizetype(time.size())).toDouble() / 1e6);
                // Where the clock was set back between, nobody knows which dates it saw.
                if (begin && *begin <= date)
                    periods.push_back({*begin, date});
                const bool isStart = isStarting(row.column(1).bytes);
                begin = isStart ? std::optional(date) : std::nullopt;
                return true;
            }));
        if (begin)
            periods.push_back({*begin, std::max(*begin, present)});
    });
    return periods;
}

std::optional<ZELKDate> ZELKLWAEventStore::beginning()
{
    std::optional<QString> kept;
    attempt([&] {
        kept = stringForSetting(beginningSetting);
        require(lastResult());
    });
    return kept ? std::optional(ZELKDate(double(kept->toLongLong()) / 1e6)) : std::nullopt;
}

/// Up to when something of the past was read; nothing where that is not known: the clock may have been ahead.
std::optional<ZELKDate> ZELKLWAEventStore::readUpTo(QLatin1String setting, ZELKDate start)
{
    const auto kept = stringForSetting(setting);
    require(lastResult());
    const ZELKDate date(kept ? double(kept->toLongLong()) / 1e6 : 0.0);
    return kept && date <= start ? std::optional(date) : std::nullopt;
}

ZELKLWAUnread ZELKLWAEventStore::unreadPast(ZELKDate start)
{
    const ZELKDate always = ZELKDate::distantPast();
    const auto begun = beginning();
    ZELKLWAUnread unread;
    m_pastIsAsked = begun && attempt([&] {
                        const auto past = stringForSetting(pastSetting);
                        require(lastResult());
                        const ZELKDate otherwise = past == setAsideValue() ? *begun : always;
                        unread = {};
                        if (!past)
                            unread.charges = {{always, std::min(*begun, start)}};
                        unread.accounting = ZELKLWAPeriodsWithout(
                            {readUpTo(accountingSetting, start).value_or(otherwise), start}, {});
                        unread.sleeps = ZELKLWAPeriodsWithout(
                            {readUpTo(journalSetting, start).value_or(otherwise), start}, recordedPeriods());
                    });
    return m_pastIsAsked ? unread : ZELKLWAUnread();
}

void ZELKLWAEventStore::pastWasRead(ZELKDate start, bool journal)
{
    if (!m_pastIsAsked)
        return; // nothing was
    attempt([&] {
        write([&] {
            if (!stringForSetting(pastSetting))
                setString(QStringLiteral("read"), pastSetting);
            setString(QString::number(ZELKLWATimeOf(start)), accountingSetting);
            if (journal)
                setString(QString::number(ZELKLWATimeOf(start)), journalSetting);
        });
    });
}

std::vector<ZELKLWAEvent> ZELKLWAEventStore::unlikeRecorded(std::vector<ZELKLWAEvent> events)
{
    constexpr qint64 apart = secondsApart * 1000000LL;
    const auto isRecorded = [this](const ZELKLWAEvent &event) {
        const qint64 time = ZELKLWATimeOf(event.date);
        bool found = false;
        require(forEachRow(likeKey,
                           {{QStringLiteral("@from"), QString::number(time - apart)},
                            {QStringLiteral("@to"), QString::number(time + apart)},
                            {QStringLiteral("@event"), event.event},
                            {QStringLiteral("@monitor"), event.monitor}},
                           [&](const ZELKDatabaseRow &) { return found = true; }));
        return found;
    };
    attempt([&] { events.erase(std::remove_if(events.begin(), events.end(), isRecorded), events.end()); });
    return events;
}
