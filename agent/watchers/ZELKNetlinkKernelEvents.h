#pragma once

#include "ZELKKernelEvents.h"

#include <memory>

class QSocketNotifier;

/// The kernel itself, by its netlink socket, which any user may read. Needs no device daemon.
class ZELKNetlinkKernelEvents final : public ZELKKernelEvents
{
    Q_OBJECT

public:
    explicit ZELKNetlinkKernelEvents(QObject *parent = nullptr);
    ~ZELKNetlinkKernelEvents() override;

    bool start() override;
    void stop() override;

private:
    bool open();
    void readAll();
    bool readOne();

    int m_socket = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
