#include "ZELKLWABackfill.h"

#include "ZELKAccountingHistory.h"
#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKUPowerFolder.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr ZELKDate earliest = ZELKDate::fromSecondsSince1970(631152000.0); // 1990-01-01 UTC

bool isIn(ZELKDate date, const ZELKLWAPeriods &times)
{
    return std::any_of(times.begin(), times.end(),
                       [date](const ZELKLWAPeriod &period) { return period.holds(date); });
}

/// From when on a file must have been written to, to hold anything of those times; nothing for any file.
std::optional<ZELKDate> writtenSince(const ZELKLWAPeriods &times)
{
    const ZELKDate begin = times.front().begin;
    return begin > earliest ? std::optional(begin) : std::nullopt;
}

QString firstLine(const QString &path)
{
    constexpr qint64 longest = 64;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readLine(longest)).trimmed() : QString();
}

void appendExisting(QStringList &places, const QString &path)
{
    if (QFileInfo::exists(path))
        places.append(path);
}

/// One battery's readings, which are small, as events, which are not.
class UPowerSource
{
public:
    UPowerSource(std::shared_ptr<const ZELKUPowerFolder> folder, const QString &battery)
        : m_folder(std::move(folder))
        , m_battery(battery)
    {
    }

    bool operator()(std::vector<ZELKLWAEvent> &events)
    {
        if (m_told == 0)
            m_readings = m_folder->readings(m_battery);
        const QString name = m_folder->nameOf(m_battery);
        for (; m_told < m_readings.size() && events.size() < ZELKLWABackfill::eventsABatch; ++m_told)
            events.push_back(m_readings[m_told].event(name));
        return m_told < m_readings.size();
    }

private:
    std::shared_ptr<const ZELKUPowerFolder> m_folder;
    QString m_battery;
    std::vector<ZELKUPowerReading> m_readings;
    std::size_t m_told = 0;
};

} // namespace

ZELKLWABackfillPlaces ZELKLWABackfillPlaces::ofSystem(const QString &root)
{
    ZELKLWABackfillPlaces places;
    if (const QString machine = firstLine(root + QStringLiteral("/etc/machine-id")); !machine.isEmpty())
        for (const char *folder : {"/var/log/journal/", "/run/log/journal/"})
            appendExisting(places.journals, root + QString::fromLatin1(folder) + machine);
    appendExisting(places.wtmp, root + QStringLiteral("/var/log/wtmp"));
    appendExisting(places.upower, root + QStringLiteral("/var/lib/upower"));
    places.powerSupply.prepend(root);
    return places;
}

ZELKLWABackfill::ZELKLWABackfill(ZELKLWABackfillPlaces places, ZELKLWAUnread unread, ZELKLWAEventSink sink,
                                 const QString &program, QObject *parent)
    : QObject(parent)
    , m_places(std::move(places))
    , m_unread(std::move(unread))
    , m_sink(std::move(sink))
    , m_journals(program.isEmpty() ? QCoreApplication::applicationFilePath() : program)
{
    const ZELKDate present = ZELKEnvironment::current().clock->now();
    for (ZELKLWAPeriods *times : {&m_unread.sleeps, &m_unread.charges, &m_unread.accounting})
        for (ZELKLWAPeriod &period : *times)
            period = {std::max(period.begin, earliest), std::min(period.end, present)};
    m_soon.setSingleShot(true);
    m_soon.setInterval(0);
    connect(&m_soon, &QTimer::timeout, this, [this] { zelkGuard([&] { step(); }); });
    connect(&m_journals, &ZELKJournalReading::finished, this,
            [this](const std::vector<ZELKSleepMark> &marks, bool complete) {
                zelkGuard([&] { takeSleeps(marks, complete); });
            });
}

ZELKLWABackfill::ZELKLWABackfill(ZELKLWABackfillPlaces places, ZELKDate until, ZELKLWAEventSink sink,
                                 const QString &program, QObject *parent)
    : ZELKLWABackfill(std::move(places), ZELKLWAUnread::before(until), std::move(sink), program, parent)
{
}

void ZELKLWABackfill::start()
{
    m_running = true;
    addSources();
    readJournals();
    continueSoon();
}

/// From a day before: what an entry is dated may be some time before the journal took it in.
void ZELKLWABackfill::readJournals()
{
    constexpr double day = 86400.0;
    m_readsJournals = true;
    ZELKDate since = ZELKDate::distantFuture();
    for (const ZELKLWAPeriod &period : m_unread.sleeps)
        since = std::min(since, period.begin);
    const QStringList files =
        m_unread.sleeps.empty() ? QStringList() : ZELKJournalReading::files(m_places.journals);
    m_journals.start(files, since > earliest ? std::optional(since.addingTimeInterval(-day)) : std::nullopt);
}

void ZELKLWABackfill::takeSleeps(const std::vector<ZELKSleepMark> &marks, bool complete)
{
    m_readsJournals = false;
    m_complete = m_complete && complete;
    std::vector<ZELKLWAEvent> sleeps = ZELKSleepHistory::events(marks);
    std::erase_if(sleeps, [this](const ZELKLWAEvent &event) { return !isIn(event.date, m_unread.sleeps); });
    if (m_sleepFilter)
        sleeps = m_sleepFilter(sleeps);
    m_ready.insert(m_ready.end(), sleeps.begin(), sleeps.end());
    continueSoon();
}

void ZELKLWABackfill::stop()
{
    m_running = false;
    m_soon.stop();
    m_sources.clear();
    m_ready.clear();
    m_journals.stop();
}

void ZELKLWABackfill::addSources()
{
    for (const QString &path : m_unread.accounting.empty() ? QStringList() : m_places.wtmp)
        for (const QString &file : ZELKAccountingHistory::files(path, writtenSince(m_unread.accounting)))
            addSource(m_unread.accounting, [history = std::make_shared<ZELKAccountingHistory>(file)](
                                               auto &events) { return history->readSome(events); });
    for (const QString &path : m_unread.charges.empty() ? QStringList() : m_places.upower) {
        const auto folder = std::make_shared<const ZELKUPowerFolder>(path, m_places.powerSupply, m_names);
        for (const QString &battery : folder->batteries())
            addSource(m_unread.charges, UPowerSource(folder, battery));
    }
}

void ZELKLWABackfill::addSource(const ZELKLWAPeriods &times, Source source)
{
    m_sources.emplace_back(std::move(source), &times);
}

void ZELKLWABackfill::continueSoon()
{
    if (m_running)
        m_soon.start();
}

/// One piece of work; the journal's process wakes it when that is all there is to wait for.
void ZELKLWABackfill::step()
{
    if (!m_ready.empty()) {
        tellSome();
    } else if (!m_sources.empty()) {
        std::vector<ZELKLWAEvent> events;
        const auto &[source, times] = m_sources.front();
        const ZELKLWAPeriods &wanted = *times;
        if (!source(events))
            m_sources.pop_front();
        take(events, wanted);
    } else {
        if (m_readsJournals)
            return;
        m_running = false;
        Q_EMIT finished(m_complete);
    }
    continueSoon();
}

void ZELKLWABackfill::tellSome()
{
    const auto end = m_ready.begin() + std::ptrdiff_t(std::min(m_ready.size(), eventsABatch));
    const std::vector<ZELKLWAEvent> batch(m_ready.begin(), end);
    m_ready.erase(m_ready.begin(), end);
    m_sink(batch);
}

void ZELKLWABackfill::take(const std::vector<ZELKLWAEvent> &events, const ZELKLWAPeriods &times)
{
    for (const ZELKLWAEvent &event : events)
        if (isIn(event.date, times))
            m_ready.push_back(event);
}
