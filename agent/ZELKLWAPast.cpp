#include "ZELKLWAPast.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKSQLitePort.h"

#include <QFileInfo>

ZELKLWAPast::ZELKLWAPast(const std::shared_ptr<const ZELKBundle> &bundle, const ZELKLWAOptions &options,
                         QObject *parent)
    : QObject(parent)
    , m_places(options.past())
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
    const ZELKDate until = m_store.beginning().value_or(ZELKEnvironment::current().clock->now());
    m_backfill =
        std::make_unique<ZELKLWABackfill>(m_places, until, [this](const std::vector<ZELKLWAEvent> &events) {
            m_told += int(events.size());
            m_store.record(events);
        });
    connect(m_backfill.get(), &ZELKLWABackfill::finished, this,
            [this](bool complete) { zelkGuard([&] { end(complete); }); });
    m_backfill->start();
}

void ZELKLWAPast::end(bool complete)
{
    const bool kept = m_store.save();
    Q_EMIT finished(m_told, complete && kept && m_allThere);
}
