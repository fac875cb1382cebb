#include "ZELKSleepHistory.h"

#include <algorithm>
#include <array>

namespace {

using Kind = ZELKSleepMark::Kind;

constexpr std::array<const char *, 5> words = {"start", "end", "fail", "entry", "exit"};
constexpr qsizetype bootDigits = 32;
constexpr qint64 earliest = 631152000LL * 1000000; // 1990-01-01 UTC
constexpr qint64 latest = 7258118400LL * 1000000;  // 2200-01-01 UTC
constexpr qint64 longestBoot = 4000000000LL * 1000000;

/// How far apart the service manager's and the kernel's lines of one moment may come into the journal.
constexpr qint64 spread = 10 * 1000000LL;

/// A stretch of a boot in which the service manager tells of the sleep.
struct Told
{
    qint64 from;
    qint64 to;
    bool entry;
    bool exit;

    bool covers(const ZELKSleepMark &mark) const
    {
        return (mark.kind == Kind::KernelEntry ? entry : exit) && mark.monotonic >= from - spread &&
               mark.monotonic <= to + spread;
    }
};

ZELKLWAEvent eventOf(const ZELKSleepMark &mark)
{
    const bool sleeps = mark.kind == Kind::Started || mark.kind == Kind::KernelEntry;
    const QLatin1String name = mark.kind == Kind::Failed ? ZELKEventSystemWillNotSleep
                               : sleeps                  ? ZELKEventSystemWillSleep
                                                         : ZELKEventSystemHasPoweredOn;
    return {ZELKDate::fromSecondsSince1970(double(mark.realtime) / 1e6), name, ZELKMonitorPowerEvents,
            ZELKEventNoProperties};
}

/// Takes the marks of one boot in their order.
class Boot
{
public:
    explicit Boot(std::vector<ZELKLWAEvent> &events)
        : m_events(events)
    {
    }

    void take(const ZELKSleepMark &mark)
    {
        if (mark.kind == Kind::KernelEntry || mark.kind == Kind::KernelExit) {
            m_kernel.push_back(mark);
        } else if (mark.kind == Kind::Started) {
            closeOpen();
            m_open = mark;
        } else {
            end(mark);
        }
    }

    void finish()
    {
        closeOpen();
        for (const ZELKSleepMark &mark : m_kernel)
            if (std::none_of(m_told.begin(), m_told.end(),
                             [&](const Told &told) { return told.covers(mark); }))
                m_events.push_back(eventOf(mark));
    }

private:
    void end(const ZELKSleepMark &mark)
    {
        const bool whole = m_open.has_value();
        m_told.push_back({whole ? m_open->monotonic : mark.monotonic, mark.monotonic, whole, true});
        if (whole && mark.kind == Kind::Ended)
            m_events.push_back(eventOf(*m_open));
        m_events.push_back(eventOf(mark));
        m_open.reset();
    }

    /// A sleep whose end nobody told.
    void closeOpen()
    {
        if (!m_open)
            return;
        m_told.push_back({m_open->monotonic, m_open->monotonic, true, false});
        m_events.push_back(eventOf(*m_open));
        m_open.reset();
    }

    std::vector<ZELKLWAEvent> &m_events;
    std::optional<ZELKSleepMark> m_open;
    std::vector<ZELKSleepMark> m_kernel;
    std::vector<Told> m_told;
};

} // namespace

QByteArray ZELKSleepMark::line() const
{
    return QByteArray(words[std::size_t(kind)]) + ' ' + boot + ' ' + QByteArray::number(monotonic) + ' ' +
           QByteArray::number(realtime) + '\n';
}

std::optional<ZELKSleepMark> ZELKSleepMark::fromLine(const QByteArray &line)
{
    const QList<QByteArray> parts = line.trimmed().split(' ');
    const auto word = parts.size() == 4 ? std::find(words.begin(), words.end(), parts.at(0)) : words.end();
    if (word == words.end() || parts.at(1).size() != bootDigits)
        return std::nullopt;
    bool monotonicRead = false;
    bool realtimeRead = false;
    const ZELKSleepMark mark{parts.at(1), parts.at(2).toLongLong(&monotonicRead),
                             Kind(std::distance(words.begin(), word)), parts.at(3).toLongLong(&realtimeRead)};
    const bool sound = monotonicRead && realtimeRead && mark.monotonic >= 0 && mark.monotonic < longestBoot &&
                       mark.realtime >= earliest && mark.realtime < latest;
    return sound ? std::optional(mark) : std::nullopt;
}

std::vector<ZELKLWAEvent> ZELKSleepHistory::events(std::vector<ZELKSleepMark> marks)
{
    std::sort(marks.begin(), marks.end());
    marks.erase(std::unique(marks.begin(), marks.end()), marks.end());
    std::vector<ZELKLWAEvent> events;
    for (auto mark = marks.begin(); mark != marks.end();) {
        Boot boot(events);
        const QByteArray identifier = mark->boot;
        for (; mark != marks.end() && mark->boot == identifier; ++mark)
            boot.take(*mark);
        boot.finish();
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const ZELKLWAEvent &a, const ZELKLWAEvent &b) { return a.date < b.date; });
    return events;
}
