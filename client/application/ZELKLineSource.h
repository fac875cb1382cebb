#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The lines of a file descriptor, in pieces: memory is bounded by the longest line that is taken.
class ZELKLineSource
{
public:
    struct Line
    {
        /// Without the line break; valid until the next call.
        std::string_view text;
        /// Counted from 1.
        std::uint64_t number = 0;
        /// Longer than the limit; its text is left out.
        bool isTooLong = false;
    };

    /// `descriptor` is not owned.
    ZELKLineSource(int descriptor, std::size_t longestLine);

    /// Nothing at the end, and when reading failed. A last line needs no line break.
    std::optional<Line> next();
    /// Why reading failed; empty when it did not.
    QString error() const { return m_error; }

private:
    bool readMore();

    int m_descriptor;
    std::size_t m_longestLine;
    std::string m_buffer;
    std::size_t m_begin = 0;   // of what was not yet given
    std::size_t m_scanned = 0; // up to here there is no line break
    std::uint64_t m_number = 0;
    bool m_skipping = false; // the rest of a line that is too long
    bool m_ended = false;
    QString m_error;
};
