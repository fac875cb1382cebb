#include "ZELKLWAEventStore.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"

// When the records began, what they hold of the time before, and how the agent before this one ended.

namespace {

constexpr QLatin1String lastOfKey("ZELKLWAEventStoreSQLLastOf");
constexpr QLatin1String pastSetting("past");

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
    setString(QStringLiteral("set aside"), pastSetting);
    QTimer::singleShot(0, this,
                       [this] { zelkGuard([&] { Q_EMIT begunAnew(); }); }); // not in the middle of a write
}

std::optional<ZELKDate> ZELKLWAEventStore::unrecordedEnd()
{
    std::optional<ZELKDate> end;
    attempt([&] {
        bool isStart = false;
        require(forEachRow(
            lastOfKey, {{QStringLiteral("@monitor"), ZELKMonitorLullwatch}}, [&](const ZELKDatabaseRow &row) {
                isStart = row.column(0).bytes ==
                          std::string_view(ZELKEventStartingMonitor.data(), ZELKEventStartingMonitor.size());
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

std::optional<ZELKDate> ZELKLWAEventStore::beginning()
{
    std::optional<QString> kept;
    attempt([&] {
        kept = stringForSetting(beginningSetting);
        require(lastResult());
    });
    return kept ? std::optional(ZELKDate(double(kept->toLongLong()) / 1e6)) : std::nullopt;
}

std::optional<ZELKDate> ZELKLWAEventStore::unreadPast()
{
    bool isRead = false;
    const bool known = attempt([&] {
        isRead = stringForSetting(pastSetting).has_value();
        require(lastResult());
    });
    return known && !isRead ? beginning() : std::nullopt;
}

void ZELKLWAEventStore::pastWasRead()
{
    attempt([&] { write([&] { setString(QStringLiteral("read"), pastSetting); }); });
}
