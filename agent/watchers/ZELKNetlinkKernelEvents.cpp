#include "ZELKNetlinkKernelEvents.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstring>
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr unsigned kernelGroup = 1;
/// The kernel sends at most 2 KiB of properties after the path.
constexpr std::size_t longestMessage = 8192;

} // namespace

ZELKNetlinkKernelEvents::ZELKNetlinkKernelEvents(QObject *parent)
    : ZELKKernelEvents(parent)
{
}

ZELKNetlinkKernelEvents::~ZELKNetlinkKernelEvents()
{
    stop();
}

bool ZELKNetlinkKernelEvents::start()
{
    stop();
    if (!open()) {
        ZELKConsole::log(ZELKFormat("The kernel's events of devices cannot be heard: %s", {strerror(errno)}));
        stop();
        return false;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { zelkGuard([&] { readAll(); }); });
    return true;
}

void ZELKNetlinkKernelEvents::stop()
{
    // It may be what runs us.
    if (m_notifier) {
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater();
    }
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
}

bool ZELKNetlinkKernelEvents::open()
{
    m_socket = ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT);
    sockaddr_nl address = {};
    address.nl_family = AF_NETLINK;
    address.nl_groups = kernelGroup;
    return m_socket >= 0 &&
           ::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

void ZELKNetlinkKernelEvents::readAll()
{
    while (m_socket >= 0 && readOne()) {
    }
}

/// False when there is nothing more.
bool ZELKNetlinkKernelEvents::readOne()
{
    std::array<char, longestMessage> bytes;
    sockaddr_nl sender = {};
    socklen_t length = sizeof sender;
    const ssize_t size =
        ::recvfrom(m_socket, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr *>(&sender), &length);
    if (size < 0 && errno == ENOBUFS)
        Q_EMIT lost();
    if (size < 0)
        return errno == ENOBUFS || errno == EINTR;
    // Anybody may send to a socket; the kernel's number is 0.
    if (length < sizeof sender || sender.nl_pid != 0)
        return true;
    if (const auto event = ZELKKernelEvent::parse({bytes.data(), std::size_t(size)}))
        Q_EMIT received(*event);
    return true;
}
