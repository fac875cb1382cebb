#include "ZELKInterruptedSleep.h"

#include "ZELKEnvironment.h"
#include "ZELKRawEvent.h"
#include "ZELKSleepStates.h"

#include <QFile>
#include <QStringList>

namespace {

constexpr qint64 longestFile = 200; // "BOOT-ID DATE AWAKE SUSPENDED"
constexpr qsizetype words = 4;
constexpr int decimals = 6;
constexpr double smallestStep = 1e-6;

bool isSleep(const ZELKLWAEvent &event)
{
    return event.event == ZELKEventSystemWillSleep;
}

bool isWake(const ZELKLWAEvent &event)
{
    return event.event == ZELKEventSystemHasPoweredOn;
}

} // namespace

ZELKInterruptedSleep::ZELKInterruptedSleep(const QString &path, std::shared_ptr<const ZELKSuspendClock> clock,
                                           const QString &bootID)
    : m_path(path)
    , m_clock(std::move(clock))
    , m_bootID(bootID)
{
}

ZELKMoment ZELKInterruptedSleep::now() const
{
    return m_clock->read(ZELKEnvironment::current().clock->now());
}

QString ZELKInterruptedSleep::boot() const
{
    QFile file(m_bootID);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.read(longestFile)).trimmed() : QString();
}

/// The file is not synchronised: it need not outlive the boot.
void ZELKInterruptedSleep::note(const std::vector<ZELKLWAEvent> &events)
{
    const ZELKLWAEvent *last = nullptr;
    for (const ZELKLWAEvent &event : events)
        if (isSleep(event) || isWake(event))
            last = &event;
    if (!last)
        return;
    m_isAnothers = true;
    QFile::remove(m_path);
    QFile file(m_path);
    if (!isSleep(*last) || !file.open(QIODevice::WriteOnly))
        return;
    const ZELKMoment moment = now();
    file.write(QStringLiteral("%1 %2 %3 %4\n")
                   .arg(boot(), ZELKDateText(last->date), QString::number(moment.awake, 'f', decimals),
                        QString::number(moment.suspended, 'f', decimals))
                   .toLatin1());
}

void ZELKInterruptedSleep::recall()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QStringList texts = QString::fromLatin1(file.read(longestFile)).trimmed().split(QLatin1Char(' '));
    if (texts.size() != words || texts.at(0) != boot())
        return;
    bool dated = false;
    bool awakeRead = false;
    bool suspendedRead = false;
    const ZELKMoment announced{ZELKDate(texts.at(1).toDouble(&dated)), texts.at(2).toDouble(&awakeRead),
                               texts.at(3).toDouble(&suspendedRead)};
    if (!dated || !awakeRead || !suspendedRead)
        return;
    m_announced = announced;
    m_found = now();
}

std::optional<ZELKMoment> ZELKInterruptedSleep::takeComing()
{
    return m_announced && endedByClocks().empty() ? std::exchange(m_announced, std::nullopt) : std::nullopt;
}

std::vector<ZELKLWAEvent> ZELKInterruptedSleep::ended(std::vector<ZELKLWAEvent> sleeps)
{
    if (!m_announced)
        return sleeps;
    if (sleeps.empty())
        sleeps = endedByClocks();
    else if (!isSleep(sleeps.front()) && !isWake(sleeps.front())) // refused: what was announced is over
        sleeps.insert(sleeps.begin() + 1, {sleeps.front().date.addingTimeInterval(smallestStep),
                                           ZELKEventSystemHasPoweredOn, ZELKMonitorPowerEvents});
    m_isOver = !sleeps.empty();
    return sleeps;
}

/// The rules are those of an agent that lived: it would have seen the same two moments. The announcement is
/// told again, for its agent may have died with it in hand; recorded already, it adds nothing.
std::vector<ZELKLWAEvent> ZELKInterruptedSleep::endedByClocks() const
{
    ZELKSleepStates states(*m_announced);
    std::vector<ZELKLWAEvent> events = states.prepareForSleep(true, *m_announced);
    const std::vector<ZELKLWAEvent> end = states.observe(m_found);
    events.insert(events.end(), end.begin(), end.end());
    return end.empty() ? end : events;
}

void ZELKInterruptedSleep::endWasRecorded() const
{
    if (m_isOver && !m_isAnothers)
        QFile::remove(m_path);
}
