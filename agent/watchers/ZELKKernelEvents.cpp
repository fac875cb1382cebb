#include "ZELKKernelEvents.h"

#include <algorithm>

namespace {

QString textOf(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

} // namespace

/// "ACTION@PATH", then "KEY=VALUE" and so on, each ended by a zero.
std::optional<ZELKKernelEvent> ZELKKernelEvent::parse(std::string_view message)
{
    ZELKKernelEvent event;
    bool first = true;
    while (!message.empty()) {
        const std::string_view part = message.substr(0, message.find('\0'));
        message.remove_prefix(std::min(part.size() + 1, message.size()));
        const std::size_t separator = part.find(first ? '@' : '=');
        if (separator == std::string_view::npos)
            return std::nullopt;
        if (!first)
            event.properties[textOf(part.substr(0, separator))] = textOf(part.substr(separator + 1));
        first = false;
    }
    event.action = event.property("ACTION");
    event.devicePath = event.property("DEVPATH");
    event.subsystem = event.property("SUBSYSTEM");
    if (event.action.isEmpty() || event.devicePath.isEmpty())
        return std::nullopt;
    return event;
}

QString ZELKKernelEvent::property(const char *key) const
{
    const auto found = properties.find(QString::fromLatin1(key));
    return found == properties.end() ? QString() : found->second;
}
