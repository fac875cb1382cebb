#include "BruteForce.h"

#include "StatisticsFixture.h"

#include <map>
#include <set>

namespace {

class Search
{
public:
    explicit Search(const ZELKLWCLog &log)
        : m_entries(log.entry())
        , m_names(log.batteryEnumerator())
    {
        findSleeps();
        for (const QString &name : m_names)
            findCharges(name);
    }

    QString usage() const
    {
        return inForce(u"Awake"_s, [](const ZELKLWCLogEntry *entry) { return entry->pairRepresents(); });
    }
    QString sources() const
    {
        return inForce(u"Unknown"_s,
                       [](const ZELKLWCLogEntry *entry) { return entry->property(source).toString(); });
    }
    QString sleeps() const
    {
        QStringList words;
        std::vector<std::set<char>> doubts(m_sleeps.size());
        std::vector<QStringList> known(m_sleeps.size());
        QStringList sums;
        for (const QString &name : m_names)
            sums.append(name + u':' + costs(name, doubts, known));
        for (std::size_t i = 0; i < m_sleeps.size(); ++i) {
            QString word = u"r"_s;
            for (const char letter : {'s', 'g', 'c'})
                word = doubts[i].contains(letter) ? QString(QLatin1Char(letter)) : word;
            words.append(known[i].isEmpty() ? word : known[i].join(u'+'));
        }
        return (words + sums).join(u' ');
    }

private:
    struct Charge
    {
        double date;
        int percentage;
        bool onBattery;
        bool isNew; ///< the battery came or went
    };

    /// Each minute of the time, or rather each stretch between two entries, by the last word before its end.
    template <typename Word>
    QString inForce(const QString &initial, Word &&word) const
    {
        QStringList order;
        std::map<QString, double> totals;
        QString state = word(m_entries.front()).isEmpty() ? initial : word(m_entries.front());
        if (m_entries.front()->kind() == ZELKEntryKind::Daemon)
            state = initial;
        for (qsizetype i = 1; i < m_entries.size(); ++i) {
            const double length = m_entries.at(i)->date().timeIntervalSinceDate(m_entries.at(i - 1)->date());
            if (length != 0.0 && !order.contains(state))
                order.append(state);
            totals[state] += length;
            const bool isDaemon = m_entries.at(i)->kind() == ZELKEntryKind::Daemon;
            if (!isDaemon && !word(m_entries.at(i)).isEmpty())
                state = word(m_entries.at(i));
        }
        ZELKDictionary dictionary;
        for (const QString &key : order)
            dictionary.insert(key, totals[key]);
        return minutes(dictionary);
    }

    void findSleeps()
    {
        std::optional<double> start;
        for (const ZELKLWCLogEntry *entry : m_entries) {
            const double date = entry->date().timeIntervalSinceReferenceDate();
            const QString state = entry->pairRepresents();
            if (entry->kind() == ZELKEntryKind::Daemon) {
                m_breaks.push_back(date);
            } else if (state == u"Asleep") {
                if (start)
                    m_breaks.push_back(date);
                else
                    start = date;
            } else if (!state.isEmpty()) {
                if (!start || state != u"Awake")
                    m_breaks.push_back(date);
                if (start)
                    m_sleeps.push_back({*start, date});
                start.reset();
            }
        }
        m_asleepFrom = start;
    }

    void findCharges(const QString &name)
    {
        for (ZELKLWCLogEntry *entry : m_entries) {
            if (entry->property(ZELKPropertyName).toString() != name)
                continue;
            const auto &status = static_cast<const ZELKLWCLogEntryPowerStatus &>(*entry);
            Charge charge{entry->date().timeIntervalSinceReferenceDate(), status.percentageCharged(),
                          entry->property(source).toString() == u"Battery Power" && !status.charging(),
                          status.change() == ZELKLWCLogEntryPowerStatus::PresenceChanged};
            m_charges[name].push_back(charge);
            for (const ZELKLWCLogEntry *duplicate : entry->duplicates()) {
                charge.date = duplicate->date().timeIntervalSinceReferenceDate();
                charge.isNew = false;
                m_charges[name].push_back(charge);
            }
        }
    }

    bool isAsleep(double date) const
    {
        if (m_asleepFrom && date > *m_asleepFrom)
            return true;
        return std::any_of(m_sleeps.begin(), m_sleeps.end(), [&](const std::pair<double, double> &sleep) {
            return date > sleep.first && date < sleep.second;
        });
    }

    /// Between each two charges awake: what was slept, and whether that may be counted.
    QString costs(const QString &name, std::vector<std::set<char>> &doubts,
                  std::vector<QStringList> &known) const
    {
        double points[2] = {};
        double seconds[2] = {};
        const std::vector<Charge> &charges = m_charges.at(name);
        for (std::size_t i = 0; i + 1 < charges.size(); ++i) {
            std::size_t next = i + 1;
            while (next < charges.size() && !charges[next].isNew && isAsleep(charges[next].date))
                ++next;
            if (isAsleep(charges[i].date) || next == charges.size() || charges[next].isNew)
                continue;
            countBetween(name, i, next, points, seconds, doubts, known);
        }
        return u"%1/%2|%3/%4"_s.arg(points[0]).arg(seconds[0] / 60).arg(points[1]).arg(seconds[1] / 60);
    }

    void countBetween(const QString &name, std::size_t from, std::size_t to, double *points, double *seconds,
                      std::vector<std::set<char>> &doubts, std::vector<QStringList> &known) const
    {
        const std::vector<Charge> &charges = m_charges.at(name);
        const Charge &first = charges[from];
        const Charge &last = charges[to];
        bool hadPower = false;
        for (std::size_t i = from; i <= to; ++i) {
            hadPower = hadPower || !charges[i].onBattery;
            for (std::size_t j = from; j < i; ++j)
                hadPower = hadPower || charges[i].percentage > charges[j].percentage;
        }
        const bool isBroken = std::any_of(m_breaks.begin(), m_breaks.end(), [&](double date) {
            return date > first.date && date <= last.date;
        });
        std::vector<std::size_t> slept;
        double asleep = 0.0;
        for (std::size_t i = 0; i < m_sleeps.size(); ++i)
            if (m_sleeps[i].first >= first.date && m_sleeps[i].second <= last.date) {
                slept.push_back(i);
                asleep += m_sleeps[i].second - m_sleeps[i].first;
            }
        const double lost = first.percentage - last.percentage;
        const double latest = m_entries.back()->date().timeIntervalSinceReferenceDate(); // but for duplicates
        if (slept.empty()) {
            if (!isBroken && !hadPower && last.date <= latest) {
                points[1] += lost;
                seconds[1] += last.date - first.date;
            }
            return;
        }
        const auto [start, end] = std::pair(m_sleeps[slept.front()].first, m_sleeps[slept.back()].second);
        const bool isSilent =
            start - first.date > 3600 || last.date - end > 3600 || end - start - asleep > 3600;
        for (const std::size_t sleep : slept) {
            if (hadPower || isBroken || isSilent)
                doubts[sleep].insert(hadPower ? 'c' : isBroken ? 'g' : 'r');
            else if (slept.size() > 1)
                doubts[sleep].insert('s');
            else
                known[sleep].append((name == u"BAT0" ? QString() : name) + QString::number(lost));
        }
        if (!hadPower && !isBroken && !isSilent) {
            points[0] += lost;
            seconds[0] += asleep;
        }
    }

    QList<ZELKLWCLogEntry *> m_entries;
    QStringList m_names;
    std::map<QString, std::vector<Charge>> m_charges;
    std::vector<std::pair<double, double>> m_sleeps;
    std::optional<double> m_asleepFrom;
    std::vector<double> m_breaks;
};

} // namespace

BruteForce::Statistics BruteForce::of(const ZELKLWCLog &log)
{
    const Search search(log);
    return {search.usage(), search.sources(), search.sleeps()};
}

QString BruteForce::script(std::mt19937 &random)
{
    QStringList words;
    double date = 0.0;
    int percentage = 90;
    for (int i = 5 + int(random() % 40); i > 0; --i) {
        date += 0.1 + (random() % 8 ? double(random() % 20) : double(random() % 100));
        percentage += random() % 9 ? -int(random() % 3) : 1;
        const char kind = "bbbbbbbbbbbbxxxxssssswwwwwwacrmnuop"[random() % 35];
        words.append(u"%1%2:%3"_s.arg(QLatin1Char(kind)).arg(date).arg(percentage));
    }
    return words.join(u' ');
}
