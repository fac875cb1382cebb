#pragma once

#include "StatisticsFixture.h"

/// A laptop whose charge is known at every second, and the agent that watches it: it tells each point when it
/// is gone, asks anew soon after a wake, and knows nothing of a sleep. So there is what a log would hold, and
/// beside it what really happened.
class TrueLife
{
public:
    struct Sleep
    {
        double lost = 0.0; ///< percentage points
        bool hadPower = false;
        /// Long awake on both sides, watched, and without a charger all the time.
        bool isPlain = false;
    };

    static constexpr double awakePerHour = 7.0;

    TrueLife(unsigned seed, int sleeps);
    const Events &events() const { return m_events; }
    const std::vector<Sleep> &sleeps() const { return m_sleeps; }

private:
    double between(double low, double high) { return std::uniform_real_distribution(low, high)(m_random); }
    bool oneIn(unsigned chances) { return m_random() % chances == 0; }
    void happen(char what) { m_events.append(StatisticsFixture::event(word(what))); }
    QString word(char what) const;
    void read();
    void drain(double seconds);
    void stayAwake();
    void beCharged();
    void goUnwatched();
    void sleep();

    std::mt19937 m_random;
    Events m_events;
    std::vector<Sleep> m_sleeps;
    double m_date = 1000.0;
    double m_charge = 95.5;
    int m_told = -1;
    bool m_onMains = false;
    bool m_toldMains = false;
    bool m_isPlain = true; ///< since the last sleep
};
