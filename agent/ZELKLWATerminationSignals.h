#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// SIGTERM, SIGINT and SIGHUP as a Qt signal. Made before the process has other threads: the signals are
/// blocked in every thread made after it.
class ZELKLWATerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit ZELKLWATerminationSignals(QObject *parent = nullptr);
    ~ZELKLWATerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    void drain();

    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
