#include "ZELKLWAPast.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKSQLitePort.h"
#include "ZELKSettingsPowerSourceNames.h"
#include "ZELKUserDefaults.h"

#include <QFileInfo>

#include <algorithm>

namespace {

/// The names that the watchers have given, and what is named beside them here: of that they are not told.
class KnownNames final : public ZELKPowerSourceNameMemory
{
public:
    explicit KnownNames(const QString &settings)
    {
        ZELKUserDefaults defaults(settings);
        m_names = ZELKSettingsPowerSourceNames(defaults).recall();
    }
    Names recall() const override { return m_names; }
    void remember(const Names &names) override { m_names = names; }

private:
    Names m_names;
};

} // namespace

ZELKLWAPast::ZELKLWAPast(const std::shared_ptr<const ZELKBundle> &bundle, const ZELKLWAOptions &options,
                         QObject *parent)
    : QObject(parent)
    , m_places(options.past())
    , m_settings(options.settings)
    , m_store(options.database, bundle, std::make_shared<ZELKSQLitePort>(), ZELKLWAEventStore::Keeper::Guest)
{
}

void ZELKLWAPast::start()
{
    for (QStringList *places : {&m_places.wtmp, &m_places.journals, &m_places.upower})
        places->removeIf([this](const QString &place) {
            if (QFileInfo(place).isReadable())
                return false;
            ZELKConsole::log(ZELKFormat("'%@' can not be read.", {place}));
            m_allThere = false;
            return true;
        });
    m_recorded = m_store.recordedPeriods();
    m_backfill =
        std::make_unique<ZELKLWABackfill>(m_places, ZELKEnvironment::current().clock->now(),
                                          [this](const std::vector<ZELKLWAEvent> &events) { take(events); });
    connect(m_backfill.get(), &ZELKLWABackfill::finished, this,
            [this](bool complete) { zelkGuard([&] { end(complete); }); });
    m_backfill->setSleepFilter([this](const auto &sleeps) { return unlikeRecorded(sleeps); });
    KnownNames names(m_settings);
    m_backfill->setNames(&names);
    m_backfill->start();
}

/// An agent that was killed did not see all of the sleep that it had told of.
std::vector<ZELKLWAEvent> ZELKLWAPast::unlikeRecorded(const std::vector<ZELKLWAEvent> &sleeps)
{
    std::vector<ZELKLWAEvent> news = m_store.unlikeRecorded(sleeps);
    m_told += int(sleeps.size() - news.size());
    return news;
}

void ZELKLWAPast::take(const std::vector<ZELKLWAEvent> &events)
{
    std::vector<ZELKLWAEvent> news;
    for (const ZELKLWAEvent &event : events) {
        const bool wasRecorded = std::any_of(m_recorded.begin(), m_recorded.end(), [&](const auto &period) {
            return period.begin <= event.date && event.date <= period.end;
        });
        // The accounting file is read alike by everybody, so that what it tells stands here once in any case.
        if (wasRecorded && event.monitor != ZELKMonitorSystemAccounting)
            ++m_leftOut;
        else
            news.push_back(event);
    }
    m_told += int(news.size());
    m_store.record(news);
}

void ZELKLWAPast::end(bool complete)
{
    const bool kept = m_store.save();
    Q_EMIT finished(m_told, m_leftOut, complete && kept && m_allThere);
}
