#include "ZELKTerminationSignals.h"

#include "ZELKAssertion.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array numbers{SIGTERM, SIGINT, SIGHUP};
constexpr int nowhere = -1;

/// A handler is the process's, and knows nothing but this.
std::atomic<int> awakener{nowhere};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void zelkAwaken(int)
{
    const int before = errno;
    // A full pipe wakes as well as one byte more would.
    [[maybe_unused]] const ssize_t written = ::write(awakener.load(), "", 1);
    errno = before;
}

void setHandler(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(number, &action, nullptr);
}

/// Whoever started this process may have had them blocked.
void unblock()
{
    sigset_t all;
    sigemptyset(&all);
    for (const int number : numbers)
        sigaddset(&all, number);
    ::pthread_sigmask(SIG_UNBLOCK, &all, nullptr);
}

bool isIgnored(int number)
{
    struct sigaction action = {};
    return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

ZELKTerminationSignals::ZELKTerminationSignals(QObject *parent)
    : QObject(parent)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // then they end the process, as they do by themselves
    m_readingEnd = ends[0];
    m_writingEnd = ends[1];
    awakener = m_writingEnd;
    m_notifier = std::make_unique<QSocketNotifier>(m_readingEnd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        zelkGuard([this] {
            drain();
            Q_EMIT received();
        });
    });
    for (const int number : numbers)
        if (!isIgnored(number))
            setHandler(number, zelkAwaken);
    unblock();
}

ZELKTerminationSignals::~ZELKTerminationSignals()
{
    if (m_readingEnd < 0)
        return;
    for (const int number : numbers)
        if (!isIgnored(number))
            setHandler(number, SIG_DFL);
    awakener = nowhere;
    m_notifier.reset();
    ::close(m_readingEnd);
    ::close(m_writingEnd);
}

void ZELKTerminationSignals::drain() const
{
    std::array<char, 64> bytes;
    while (::read(m_readingEnd, bytes.data(), bytes.size()) > 0)
        continue;
}
