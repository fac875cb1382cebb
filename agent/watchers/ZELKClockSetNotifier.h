#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

/// Tells when the wall clock was set, which the kernel also does whenever the machine resumes: the one notice
/// of a resume that needs no service. Costs nothing until then. Where the kernel has no such timer it never
/// tells.
class ZELKClockSetNotifier : public QObject
{
    Q_OBJECT

public:
    explicit ZELKClockSetNotifier(QObject *parent = nullptr);
    ~ZELKClockSetNotifier() override;

    void start();
    void stop();

Q_SIGNALS:
    void clockWasSet();

private:
    void arm();
    void handleReady();

    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
