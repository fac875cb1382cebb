#pragma once

#include <QtGlobal>

#include <algorithm>
#include <optional>

/// When events may be served. Clients never ask again for the second after a request, and events come in
/// bursts within a second; so a burst is served only once it is over.
class ZELKLWABurst
{
public:
    static constexpr qint64 quietMilliseconds = 1000;
    /// A burst that goes on is cut here.
    static constexpr qint64 longestMilliseconds = 30000;

    /// An event arrived; `now` in milliseconds of a clock that is never set.
    void note(qint64 now)
    {
        m_latest = now;
        m_first = m_first.value_or(now);
    }
    void end() { m_first.reset(); }
    bool isOver(qint64 now) const { return m_first && millisecondsLeft(now) == 0; }
    /// Until more than the quiet time has passed since the latest event, or the burst is cut; 0 without a
    /// burst.
    qint64 millisecondsLeft(qint64 now) const
    {
        if (!m_first)
            return 0;
        const qint64 end = std::min(m_latest + quietMilliseconds + 1, *m_first + longestMilliseconds);
        return std::max<qint64>(end - now, 0);
    }

private:
    std::optional<qint64> m_first;
    qint64 m_latest = 0;
};
