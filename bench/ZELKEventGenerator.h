#pragma once

#include "ZELKDictionary.h"
#include "ZELKRawEvent.h"

#include <array>
#include <cstdint>
#include <random>

/// Makes the raw events of a busy computer, always the same ones: three power sources, sleeps and vetoes,
/// boots. About 800 bytes a cached event; about 30 of 100 merge into others.
class ZELKEventGenerator
{
public:
    ZELKEventGenerator();

    /// Each event is a little later than the one before.
    ZELKRawEvent next();
    QList<ZELKRawEvent> next(int count);
    /// Goes on from this date.
    void moveTo(ZELKDate date) { m_time = date.timeIntervalSinceReferenceDate(); }

private:
    struct Source
    {
        QString name;
        QString transport;
        int identifier;
        int percent;
        bool present = true;
        bool charging = false;
    };

    int below(int limit) { return int(m_random() % std::uint32_t(limit)); }
    ZELKDate advance();
    ZELKDictionary readingOf(Source &source);
    ZELKRawEvent powerEvent();
    ZELKRawEvent sleepEvent();
    ZELKRawEvent accountingEvent();
    ZELKRawEvent idleEvent(bool vetoed);

    std::mt19937 m_random{20010101};
    double m_time = 5.0e8;
    std::array<Source, 3> m_sources;
    bool m_asleep = false;
    bool m_monitored = false;
    int m_boots = 0;
};
