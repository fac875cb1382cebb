#include "ZELKLWASettler.h"

#include "ZELKAssertion.h"
#include "ZELKLWAEventStore.h"

ZELKLWASettler::ZELKLWASettler(ZELKLWAEventStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer); // never before the second is over
    connect(&m_timer, &QTimer::timeout, this, [this] { zelkGuard([&] { look(); }); });
    connect(&m_store, &ZELKLWAEventStore::recorded, this, [this] { zelkGuard([&] { note(); }); });
}

void ZELKLWASettler::note()
{
    m_burst.note(m_clock.elapsed());
    if (!m_timer.isActive())
        look();
}

void ZELKLWASettler::lookForStrays()
{
    if (!m_timer.isActive() && m_store.hasUnsettled())
        note();
}

void ZELKLWASettler::look()
{
    const qint64 now = m_clock.elapsed();
    if (m_burst.isOver(now))
        settleNow();
    else if (const qint64 left = m_burst.millisecondsLeft(now); left > 0)
        m_timer.start(int(left));
}

void ZELKLWASettler::settleNow()
{
    m_timer.stop();
    m_burst.end();
    m_store.settle();
}
