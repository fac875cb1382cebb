#include "ZELKLWAEventPipe.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEventStream.h"
#include "ZELKRawEvent.h"
#include "ZELKRawEventWriter.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int eventsAPage = 256;
constexpr qsizetype bytesAPage = qsizetype(256) * 1024;
constexpr int pipeSize = 256 * 1024;

QString text(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

QByteArray bytesOf(const ZELKRawEventView &event)
{
    const ZELKRawEvent raw{{ZELKEventKeyDate, text(event.date)},
                           {ZELKEventKeyDescription, text(event.description)},
                           {ZELKEventKeyMonitor, text(event.monitor)},
                           {ZELKEventKeyProperties, text(event.properties)}};
    return ZELKRawEventWriter::write(raw).bytes;
}

} // namespace

ZELKLWAEventPipe::ZELKLWAEventPipe(ZELKLWAEventStore &store, double from, double to,
                                   std::chrono::milliseconds patience, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_range(ZELKLWAEventRange::requested(from, to))
{
    m_store.requestWillBeServed(m_range);
    m_buffer = ZELKEventStream::begin();
    openPipe();
    m_patience.setSingleShot(true);
    m_patience.setTimerType(Qt::CoarseTimer);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        zelkGuard([&] {
            ZELKConsole::log(QStringLiteral("A client that did not read its events was given up."));
            close();
        });
    });
}

ZELKLWAEventPipe::~ZELKLWAEventPipe()
{
    m_notifier.reset();
    if (m_writingEnd >= 0)
        ::close(m_writingEnd);
}

void ZELKLWAEventPipe::openPipe()
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return;
    m_readingEnd.giveFileDescriptor(ends[0]);
    m_writingEnd = ends[1];
    fcntl(m_writingEnd, F_SETFL, O_NONBLOCK);
    fcntl(m_writingEnd, F_SETPIPE_SZ, pipeSize); // fewer turns of the loop; smaller where that is not allowed
    m_notifier = std::make_unique<QSocketNotifier>(m_writingEnd, QSocketNotifier::Write);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { zelkGuard([&] { writeOn(); }); });
}

QDBusUnixFileDescriptor ZELKLWAEventPipe::takeReadingEnd()
{
    m_patience.start();
    return std::exchange(m_readingEnd, QDBusUnixFileDescriptor());
}

void ZELKLWAEventPipe::close()
{
    if (m_writingEnd < 0)
        return;
    m_patience.stop();
    m_notifier->setEnabled(false);
    m_notifier.release()->deleteLater(); // it may be the one that called
    ::close(std::exchange(m_writingEnd, -1));
    Q_EMIT finished();
}

/// One page a turn of the event loop, so that nobody waits for a long stream.
void ZELKLWAEventPipe::writeOn()
{
    if (m_writingEnd < 0)
        return;
    const bool readable = m_written < m_buffer.size() || m_atEnd || fill();
    if (!readable || !flush() || (m_atEnd && m_written == m_buffer.size()))
        close();
}

/// False when the store could not be read.
bool ZELKLWAEventPipe::fill()
{
    m_buffer.resize(0);
    m_written = 0;
    const auto end = m_store.eventsAfter(
        m_position, m_range, eventsAPage, [&](ZELKLWAEventPosition position, const ZELKRawEventView &event) {
            const QByteArray bytes = bytesOf(event);
            ZELKEventStream::append(m_buffer, {bytes.constData(), std::size_t(bytes.size())});
            m_position = position;
            ++m_count;
            return m_buffer.size() < bytesAPage;
        });
    m_atEnd = end == ZELKLWAEventPage::End::Complete;
    if (m_atEnd && m_count > 0)
        m_store.requestWasServed(m_range); // before the client can know that it has all
    if (m_atEnd)
        m_buffer += ZELKEventStream::end(m_count);
    return end != ZELKLWAEventPage::End::Failed;
}

/// False when nobody reads any more.
bool ZELKLWAEventPipe::flush()
{
    while (m_written < m_buffer.size()) {
        const ssize_t count =
            ::write(m_writingEnd, m_buffer.constData() + m_written, std::size_t(m_buffer.size() - m_written));
        if (count > 0) {
            m_written += count;
            m_patience.start();
        } else if (count < 0 && errno != EINTR) {
            return errno == EAGAIN;
        }
    }
    return true;
}
