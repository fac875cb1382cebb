#pragma once

#include "ZELKLWAEvent.h"

#include <QObject>

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

private:
    ZELKLWAEventSink m_sink;
};
