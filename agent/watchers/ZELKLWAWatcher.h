#pragma once

#include "ZELKLWAEvent.h"

#include <QObject>

#include <functional>
#include <utility>

/// Looks at one source of events and hands what it sees to its sink.
class ZELKLWAWatcher : public QObject
{
    Q_OBJECT

public:
    explicit ZELKLWAWatcher(ZELKLWAEventSink sink, QObject *parent = nullptr)
        : QObject(parent)
        , m_sink(std::move(sink))
    {
    }

    /// Called before anything is read and dated. Whoever knows the clocks records a sleep that nobody told of
    /// then, so that what is read now stands after its wake and nothing is believed that was read before.
    void setWakeCheck(std::function<void()> check) { m_wakeCheck = std::move(check); }

    /// Hands over what is there already, then watches. A source that is missing is no failure: it may come.
    virtual void start() = 0;
    /// Watches no more; start() may follow.
    virtual void stop() = 0;

protected:
    void record(const std::vector<ZELKLWAEvent> &events) const
    {
        if (!events.empty())
            m_sink(events);
    }
    void checkWake() const
    {
        if (m_wakeCheck)
            m_wakeCheck();
    }

private:
    ZELKLWAEventSink m_sink;
    std::function<void()> m_wakeCheck;
};
