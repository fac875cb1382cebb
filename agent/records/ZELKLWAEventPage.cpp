#include "ZELKLWAEventPage.h"

#include "ZELKLWAWaitingEvents.h"

#include <charconv>
#include <cstdio>
#include <limits>
#include <string>

namespace {

/// Up to so many events that settled of late are looked up by their settling and sorted; more are found in
/// one pass over all.
constexpr qint64 fewSettled = 2000;

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

/// Shows events in order, and counts them.
class Shower
{
public:
    Shower(std::vector<const ZELKLWAWaitingEvents::Waiting *> waiting, int limit,
           const ZELKLWAEventPage::Handler &handler)
        : m_waiting(std::move(waiting))
        , m_left(limit)
        , m_handler(handler)
    {
    }

    bool show(ZELKLWAEventPosition position, const ZELKRawEventView &texts)
    {
        return m_handler(position, texts) && --m_left > 0;
    }
    /// Shows those that wait and stand before a position of the file.
    bool showWaitingBefore(ZELKLWAEventPosition position)
    {
        for (; m_next < m_waiting.size() && m_waiting[m_next]->position < position; ++m_next) {
            const ZELKLWAWaitingEvents::Waiting &waiting = *m_waiting[m_next];
            const std::string event = waiting.event.event.toStdString();
            const std::string monitor = waiting.event.monitor.toStdString();
            const std::string properties = waiting.event.properties.toStdString();
            const DateText date(waiting.position.time);
            if (!show(waiting.position, {date.view(), event, monitor, properties}))
                return false;
        }
        return true;
    }

private:
    std::vector<const ZELKLWAWaitingEvents::Waiting *> m_waiting;
    std::size_t m_next = 0;
    int m_left;
    const ZELKLWAEventPage::Handler &m_handler;
};

} // namespace

ZELKLWAEventPage::End ZELKLWAEventPage::read(ZELKLWAEventPosition after, const ZELKLWAEventRange &range,
                                             int limit, const Handler &handler)
{
    Shower shower(m_waiting.eventsAfter(after, range), limit, handler);
    const ZELKDictionary settled{{QStringLiteral("@settledAfter"), QString::number(range.settledAfter)},
                                 {QStringLiteral("@limit"), QString::number(fewSettled)}};
    ZELKDictionary parameters{{QStringLiteral("@time"), QString::number(after.time)},
                              {QStringLiteral("@row"), QString::number(after.row)},
                              {QStringLiteral("@from"), QString::number(range.from)},
                              {QStringLiteral("@to"), QString::number(range.to)},
                              {QStringLiteral("@settledAfter"), QString::number(range.settledAfter)},
                              {QStringLiteral("@limit"), QString::number(limit)}};
    const QString statement = statementFor(settled);
    if (m_database.lastResult().failed())
        return End::Failed;
    const ZELKDatabaseResult result =
        m_database.forEachRow(statement, parameters, [&](const ZELKDatabaseRow &row) {
            const ZELKLWAEventPosition position{numberIn(row, 0), numberIn(row, 1)};
            const DateText date(position.time);
            return shower.showWaitingBefore(position) &&
                   shower.show(position,
                               {date.view(), row.column(2).bytes, row.column(3).bytes, row.column(4).bytes});
        });
    if (result.failed())
        return End::Failed;
    if (result.end == ZELKDatabaseResult::End::Stopped)
        return End::Stopped;
    constexpr qint64 last = std::numeric_limits<qint64>::max();
    return shower.showWaitingBefore({last, last}) ? End::Complete : End::Stopped;
}

/// The key of the statement that finds the range with the least work.
QString ZELKLWAEventPage::statementFor(const ZELKDictionary &bounds)
{
    qint64 count = 0;
    m_database.forEachRow(QStringLiteral("ZELKLWAEventStoreSQLCountSettled"), bounds,
                          [&](const ZELKDatabaseRow &row) {
                              count = numberIn(row, 0);
                              return true;
                          });
    return count < fewSettled ? QStringLiteral("ZELKLWAEventStoreSQLSelect")
                              : QStringLiteral("ZELKLWAEventStoreSQLSelectManySettled");
}
