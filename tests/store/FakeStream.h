#pragma once

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>

/// The writing end of a pipe, which takes its bytes in as the reader makes room.
class FakeStream : public QObject
{
    Q_OBJECT

public:
    FakeStream(const QByteArray &bytes, bool staysOpen, QObject *parent)
        : QObject(parent)
        , m_bytes(bytes)
        , m_staysOpen(staysOpen)
    {
        std::signal(SIGPIPE, SIG_IGN);
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            qFatal("no pipe");
        readingEnd.giveFileDescriptor(ends[0]);
        m_writingEnd = ends[1];
        fcntl(m_writingEnd, F_SETFL, O_NONBLOCK);
        m_notifier = std::make_unique<QSocketNotifier>(m_writingEnd, QSocketNotifier::Write);
        connect(m_notifier.get(), &QSocketNotifier::activated, this, &FakeStream::writeSome);
    }
    ~FakeStream() override { close(); }

    QDBusUnixFileDescriptor readingEnd;

private:
    void writeSome()
    {
        const ssize_t written = write(m_writingEnd, m_bytes.constData(), size_t(m_bytes.size()));
        if (written > 0)
            m_bytes.remove(0, written);
        const bool gone = written < 0 && errno != EAGAIN;
        if (!m_bytes.isEmpty() && !gone)
            return;
        m_notifier->setEnabled(false);
        if (gone || !m_staysOpen)
            close();
    }
    void close()
    {
        m_notifier->setEnabled(false);
        if (m_writingEnd >= 0)
            ::close(std::exchange(m_writingEnd, -1));
    }

    QByteArray m_bytes;
    bool m_staysOpen;
    int m_writingEnd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
