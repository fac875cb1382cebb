#pragma once

#include "ZELKRawEvent.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>

/// Reads a raw event from one line of JSON Lines: an object with exactly the keys "date" (a number, or a text
/// that is one), "description", "monitor" and "properties" (texts; property-list XML of a dictionary, or
/// "NULL"). Safe on any bytes.
///
/// Stricter than JSON where an event would suffer: a key that stands twice, a NUL or half a surrogate pair in
/// a text, and a date that no log could show (before 2001 or after 4000) are refused.
class ZELKRawEventLineReader
{
public:
    struct Result
    {
        std::optional<ZELKRawEvent> event;
        /// Why there is no event; empty when there is one.
        QString reason;
    };

    Result read(std::string_view line);

private:
    /// Neighbours often have the same properties; what was found good need not be read again.
    std::string m_goodProperties{"NULL"};
};
