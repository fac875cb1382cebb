#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string_view>

/// The form in which events follow through the descriptor that the event service hands back.
///
///   "LWEV1\n"
///   for each event: its length in bytes (32 bits, big-endian, never 0), then its binary property list
///   0 (32 bits), then the number of events (64 bits, big-endian)
///
/// The closing number tells a whole stream from one that broke off.
namespace ZELKEventStream {

inline constexpr std::string_view greeting = "LWEV1\n";
/// A longer event is a fault of the stream.
inline constexpr std::uint32_t longestEvent = 16u << 20;

QByteArray begin();
/// Appends one event to `out`.
void append(QByteArray &out, std::string_view event);
QByteArray end(std::uint64_t count);

} // namespace ZELKEventStream

/// Takes the bytes of a stream as they come and gives the events one by one.
class ZELKEventStreamReader
{
public:
    enum class State {
        Reading,  ///< more bytes are needed, or events wait in next()
        Complete, ///< the closing number stood and agreed
        Faulty    ///< these are not the bytes of a stream
    };

    /// Takes bytes in; what next() gave before is no longer valid.
    void feed(std::string_view bytes);
    /// The next whole event's bytes, valid until the next call of feed().
    std::optional<std::string_view> next();
    State state() const { return m_state; }
    /// Events given so far.
    std::uint64_t count() const { return m_count; }

private:
    QByteArray m_buffer;
    qsizetype m_position = 0;
    std::uint64_t m_count = 0;
    bool m_greeted = false;
    State m_state = State::Reading;
};
