#include "ZELKEventFetch.h"

#include "ZELKAssertion.h"
#include "ZELKSystemErrorText.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

// As much as a pipe holds: a larger piece would only keep the interface waiting.
constexpr std::size_t pieceSize = std::size_t(64) << 10;

} // namespace

ZELKEventFetch::ZELKEventFetch(const QDBusUnixFileDescriptor &descriptor, Take take, int limit,
                               QObject *parent)
    : QObject(parent)
    , m_descriptor(descriptor)
    , m_take(std::move(take))
    , m_notifier(m_descriptor.fileDescriptor(), QSocketNotifier::Read)
{
    // The answerer chose the descriptor; reading from it must never block.
    const int flags = fcntl(m_descriptor.fileDescriptor(), F_GETFL);
    fcntl(m_descriptor.fileDescriptor(), F_SETFL, flags | O_NONBLOCK);
    m_silence.setSingleShot(true);
    m_silence.setInterval(limit);
    m_silence.start();
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] { zelkGuard([this] { readSome(); }); });
    connect(&m_silence, &QTimer::timeout, this,
            [this] { zelkGuard([this] { finish(false, QStringLiteral("The agent stopped sending.")); }); });
}

void ZELKEventFetch::readSome()
{
    std::array<char, pieceSize> piece;
    const ssize_t count = read(m_descriptor.fileDescriptor(), piece.data(), piece.size());
    if (count < 0) {
        if (errno != EAGAIN && errno != EINTR)
            finish(false, ZELKSystemErrorText(errno));
        return;
    }
    if (count == 0)
        return finish(false, QStringLiteral("The stream broke off."));
    m_silence.start();
    m_reader.feed(std::string_view(piece.data(), std::size_t(count)));
    if (!takeEvents())
        return finish(false, QStringLiteral("The events could not be kept."));
    if (m_reader.state() == ZELKEventStreamReader::State::Complete)
        finish(true, {});
    else if (m_reader.state() == ZELKEventStreamReader::State::Faulty)
        finish(false, QStringLiteral("These are not the bytes of an event stream."));
}

bool ZELKEventFetch::takeEvents()
{
    while (const std::optional<std::string_view> event = m_reader.next())
        if (!m_take(*event))
            return false;
    return true;
}

void ZELKEventFetch::finish(bool complete, const QString &error)
{
    if (m_finished)
        return;
    m_finished = true;
    m_notifier.setEnabled(false);
    m_silence.stop();
    Q_EMIT finished(complete, error);
}
