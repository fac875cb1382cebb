#include "TrueLife.h"

#include <cmath>

namespace {

constexpr double hour = 3600.0;
constexpr double longAwake = 1500.0; // several points

} // namespace

TrueLife::TrueLife(unsigned seed, int sleeps)
    : m_random(seed)
{
    read();
    stayAwake();
    for (int i = 0; i < sleeps; ++i) {
        const bool wasPlain = m_isPlain;
        sleep();
        m_isPlain = true;
        stayAwake();
        m_sleeps.back().isPlain = wasPlain && m_isPlain && !m_sleeps.back().hadPower;
    }
}

QString TrueLife::word(char what) const
{
    return u"%1%2:%3"_s.arg(QLatin1Char(what)).arg(m_date / 60.0, 0, 'f', 9).arg(std::floor(m_charge));
}

/// Told is only what is news.
void TrueLife::read()
{
    const int percentage = int(std::floor(m_charge));
    if (percentage == m_told && m_onMains == m_toldMains)
        return;
    m_told = percentage;
    m_toldMains = m_onMains;
    happen(m_onMains ? 'a' : 'b');
}

void TrueLife::drain(double seconds)
{
    m_date += seconds;
    m_charge -= seconds / hour * awakePerHour;
}

void TrueLife::stayAwake()
{
    drain(between(1.0, 15.0));
    read();
    if (m_onMains) {
        drain(between(1.0, 600.0));
        m_onMains = false;
        read();
    }
    const bool isLong = oneIn(2);
    m_isPlain = m_isPlain && isLong;
    const double end = m_date + (isLong ? between(longAwake, 2.0 * hour) : between(5.0, 600.0));
    for (;;) {
        const double next = (m_charge - std::floor(m_charge)) / awakePerHour * hour + 1e-3;
        if (m_date + next > end)
            break;
        drain(next);
        read();
    }
    drain(end - m_date);
    if (oneIn(10))
        goUnwatched();
    if (oneIn(8) || m_charge < 30.0)
        beCharged();
}

void TrueLife::beCharged()
{
    m_isPlain = false;
    m_onMains = true;
    read();
    m_date += between(60.0, hour);
    m_charge = std::max(m_charge, between(m_charge, 99.0));
    read();
    m_date += 1.0;
    m_onMains = false;
    read();
    drain(between(1.0, 1000.0));
    read();
}

void TrueLife::goUnwatched()
{
    m_isPlain = false;
    happen('n');
    drain(between(1.0, 2.0 * hour));
    happen('m');
    m_date += 1.0;
    read();
}

void TrueLife::sleep()
{
    const double seconds = oneIn(3) ? between(10.0, 1000.0) : between(1000.0, 9.0 * hour);
    const double lost = seconds / hour * between(0.3, 2.0);
    const bool hadPower = oneIn(7) && m_charge < 80.0;
    happen('s');
    m_date += seconds;
    m_charge += hadPower ? between(2.0, 15.0) : -lost;
    m_onMains = hadPower && oneIn(2);
    happen('w');
    m_sleeps.push_back({lost, hadPower});
}
