#include "ZELKLWATerminationSignals.h"

#include "ZELKAssertion.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

ZELKLWATerminationSignals::ZELKLWATerminationSignals(QObject *parent)
    : QObject(parent)
{
    sigset_t signalsToTake;
    sigemptyset(&signalsToTake);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signalsToTake, number);
    m_descriptor = signalfd(-1, &signalsToTake, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0)
        return; // then they end the process, as they do by themselves
    pthread_sigmask(SIG_BLOCK, &signalsToTake, nullptr);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { zelkGuard([&] { drain(); }); });
}

ZELKLWATerminationSignals::~ZELKLWATerminationSignals()
{
    m_notifier.reset();
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void ZELKLWATerminationSignals::drain()
{
    signalfd_siginfo information;
    bool any = false;
    while (::read(m_descriptor, &information, sizeof information) == ssize_t(sizeof information))
        any = true;
    if (any)
        Q_EMIT received();
}
