#include "ZELKClockSetNotifier.h"

#include "ZELKAssertion.h"

#include <QSocketNotifier>

#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

ZELKClockSetNotifier::ZELKClockSetNotifier(QObject *parent)
    : QObject(parent)
{
}

ZELKClockSetNotifier::~ZELKClockSetNotifier()
{
    stop();
}

void ZELKClockSetNotifier::start()
{
    if (m_descriptor >= 0)
        return;
    m_descriptor = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
    if (m_descriptor < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this,
            [this] { zelkGuard([this] { handleReady(); }); });
    arm();
}

/// May be called from what the notice itself led to.
void ZELKClockSetNotifier::stop()
{
    if (m_notifier) {
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater();
    }
    if (m_descriptor >= 0)
        close(m_descriptor);
    m_descriptor = -1;
}

/// For a moment that never comes: only the setting of the clock ends the wait.
void ZELKClockSetNotifier::arm()
{
    const itimerspec never{{0, 0}, {std::numeric_limits<time_t>::max(), 0}};
    timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}

void ZELKClockSetNotifier::handleReady()
{
    quint64 expirations = 0;
    if (read(m_descriptor, &expirations, sizeof expirations) >= 0 || errno != ECANCELED)
        return;
    arm();
    Q_EMIT clockWasSet();
}
