#include "ZELKUPowerHistory.h"

#include "ZELKRawEvent.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <string_view>

namespace {

constexpr qint64 earliest = 631152000; // 1990-01-01 UTC
constexpr qint64 latest = 7258118400;  // 2200-01-01 UTC
constexpr double fullest = 150.0;      // worn batteries with an old idea of themselves tell of more than 100
constexpr double longestEstimate = 7.0 * 24.0 * 3600.0;

using State = ZELKUPowerReading::State;

constexpr std::array<std::string_view, 7> states = {
    "unknown", "charging", "discharging", "empty", "fully-charged", "pending-charge", "pending-discharge"};

struct Line
{
    qint64 seconds;
    double value;
    State state;
    bool isCharge = false;
};

template <typename Number>
std::optional<Number> numberIn(std::string_view text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<Line> lineIn(std::string_view text)
{
    const std::size_t first = text.find('\t');
    const std::size_t second = first == text.npos ? text.npos : text.find('\t', first + 1);
    if (second == text.npos)
        return std::nullopt;
    const auto seconds = numberIn<qint64>(text.substr(0, first));
    const auto value = numberIn<double>(text.substr(first + 1, second - first - 1));
    const auto state = std::find(states.begin(), states.end(), text.substr(second + 1));
    if (!seconds || *seconds < earliest || *seconds > latest || !value || !std::isfinite(*value) ||
        state == states.end())
        return std::nullopt;
    return Line{*seconds, *value, State(std::distance(states.begin(), state))};
}

std::vector<Line> linesIn(std::string_view bytes, std::size_t &garbage)
{
    std::vector<Line> lines;
    while (!bytes.empty()) {
        const std::string_view text = bytes.substr(0, bytes.find('\n'));
        bytes.remove_prefix(std::min(text.size() + 1, bytes.size()));
        if (const auto line = lineIn(text))
            lines.push_back(*line);
        else
            garbage += text.empty() ? 0 : 1;
    }
    return lines;
}

/// The computer's source of power, so far as one battery's state tells it.
QLatin1String sourceState(State state)
{
    switch (state) {
    case State::Charging:
    case State::Full:
    case State::PendingCharge:
        return ZELKPowerSourceAC;
    case State::Discharging:
    case State::Empty:
    case State::PendingDischarge:
        return ZELKPowerSourceBattery;
    case State::Unknown:
        break;
    }
    return ZELKPowerSourceUnknown;
}

/// Minutes by the second at which they were estimated.
using Estimates = std::map<qint64, int>;

Estimates estimatesIn(const std::vector<Line> &lines, State state)
{
    Estimates estimates;
    for (const Line &line : lines)
        if (line.state == state && line.value > 0.0 && line.value <= longestEstimate)
            estimates[line.seconds] = int(std::lround(line.value / 60.0));
    return estimates;
}

/// Takes all lines in the order of their dates.
class Teller
{
public:
    Teller(const std::vector<Line> &toEmpty, const std::vector<Line> &toFull)
        : m_toEmpty(estimatesIn(toEmpty, State::Discharging))
        , m_toFull(estimatesIn(toFull, State::Charging))
    {
    }

    void take(const Line &line)
    {
        if (line.isCharge)
            takeCharge(line);
        else if (m_percent && line.seconds > m_chargeAt && line.state != State::Unknown &&
                 line.state != m_state)
            tell(line);
    }
    std::vector<ZELKUPowerReading> readings;
    std::size_t garbage = 0;

private:
    void takeCharge(const Line &line)
    {
        m_percent.reset();
        m_chargeAt = line.seconds;
        if (line.state == State::Unknown && line.value == 0.0)
            return;
        if (line.value < 0.0 || line.value > fullest) {
            ++garbage;
            return;
        }
        m_percent = int(std::lround(std::min(line.value, 100.0)));
        tell(line);
    }
    void tell(const Line &line)
    {
        m_state = line.state;
        ZELKUPowerReading reading{line.seconds, *m_percent, m_state, std::nullopt};
        if (m_state == State::Discharging || m_state == State::Charging) {
            const Estimates &estimates = m_state == State::Charging ? m_toFull : m_toEmpty;
            if (const auto estimate = estimates.find(line.seconds); estimate != estimates.end())
                reading.minutes = estimate->second;
        }
        readings.push_back(reading);
    }

    Estimates m_toEmpty;
    Estimates m_toFull;
    std::optional<int> m_percent;
    qint64 m_chargeAt = 0;
    State m_state = State::Unknown;
};

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

} // namespace

ZELKLWAEvent ZELKUPowerReading::event(const QString &name) const
{
    ZELKDictionary properties{{ZELKPropertyName, name},
                              {ZELKPropertyIsPresent, true},
                              {ZELKPropertyIsCharging, state == State::Charging},
                              {ZELKPropertyCurrentCapacity, qlonglong(percent)},
                              {ZELKPropertyMaxCapacity, qlonglong(100)}};
    if (minutes)
        properties.insert(state == State::Charging ? ZELKPropertyTimeToFullCharge : ZELKPropertyTimeToEmpty,
                          qlonglong(*minutes));
    properties.insert(ZELKPropertyPowerSourceState, QString(sourceState(state)));
    return {ZELKDate::fromSecondsSince1970(double(seconds)), ZELKEventPowerStateChanged,
            ZELKMonitorPowerSource, ZELKPropertiesText(properties)};
}

std::vector<ZELKUPowerReading> ZELKUPowerHistory::readings(std::size_t &garbage) const
{
    std::vector<Line> lines = linesIn(view(charge), garbage);
    for (Line &line : lines)
        line.isCharge = true;
    const std::vector<Line> toEmpty = linesIn(view(timeToEmpty), garbage);
    const std::vector<Line> toFull = linesIn(view(timeToFull), garbage);
    for (const std::vector<Line> &others : {linesIn(view(rate), garbage), toEmpty, toFull})
        lines.insert(lines.end(), others.begin(), others.end());
    // Within a second the charge comes first, and its state is the one that counts.
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Line &a, const Line &b) { return a.seconds < b.seconds; });
    Teller teller(toEmpty, toFull);
    for (const Line &line : lines)
        teller.take(line);
    garbage += teller.garbage;
    return std::move(teller.readings);
}
