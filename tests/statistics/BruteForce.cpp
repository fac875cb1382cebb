#include "BruteForce.h"

#include "StatisticsFixture.h"

#include <map>

namespace {

class Search
{
public:
    explicit Search(const ZELKLWCLog &log)
        : m_entries(log.entry())
    {
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

private:
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

    QList<ZELKLWCLogEntry *> m_entries;
};

} // namespace

BruteForce::Statistics BruteForce::of(const ZELKLWCLog &log)
{
    const Search search(log);
    return {search.usage(), search.sources()};
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
