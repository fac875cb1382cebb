#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// SIGTERM, SIGINT and SIGHUP as a Qt signal, while this lives. One at a time in a process; a signal that was
/// ignored when it is made (as under nohup) stays ignored.
///
/// The signals are caught, not blocked: a mask would be handed on to every program that is started from here.
class ZELKTerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit ZELKTerminationSignals(QObject *parent = nullptr);
    /// The signals end the process again.
    ~ZELKTerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    void drain() const;

    int m_readingEnd = -1;
    int m_writingEnd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
