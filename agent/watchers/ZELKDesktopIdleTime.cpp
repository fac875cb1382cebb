#include "ZELKDesktopIdleTime.h"

#include "ZELKBusCall.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

struct Source
{
    const char *service;
    const char *path;
    const char *interface;
    const char *method;
    const char *signature;
    /// Some of its kind count seconds.
    bool mayCountSeconds;
};

constexpr Source sources[] = {
    {"org.gnome.Mutter.IdleMonitor", "/org/gnome/Mutter/IdleMonitor/Core", "org.gnome.Mutter.IdleMonitor",
     "GetIdletime", "t", false},
    {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver",
     "GetSessionIdleTime", "u", true},
};

/// A service that is not there is no fault.
std::optional<double> secondsIn(const QDBusMessage &answer, const Source &source, double longest)
{
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String(source.signature))
        return std::nullopt;
    constexpr double millisecondsASecond = 1000.0;
    const auto number = double(answer.arguments().constFirst().toULongLong());
    const bool countsSeconds =
        source.mayCountSeconds && number < ZELKDesktopIdleTime::fewestMilliseconds && number <= longest;
    const double seconds = countsSeconds ? number : number / millisecondsASecond;
    return seconds <= longest ? std::optional(seconds) : std::nullopt;
}

struct Inquiry
{
    std::size_t unanswered = std::size(sources);
    std::optional<double> seconds;
};

QDBusMessage question(const Source &source)
{
    return QDBusMessage::createMethodCall(
        QString::fromLatin1(source.service), QString::fromLatin1(source.path),
        QString::fromLatin1(source.interface), QString::fromLatin1(source.method));
}

} // namespace

ZELKDesktopIdleTime::ZELKDesktopIdleTime(std::optional<QDBusConnection> sessionBus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(sessionBus))
{
}

void ZELKDesktopIdleTime::request(double longest, const Answer &answered)
{
    if (!m_bus) {
        answered(std::nullopt);
        return;
    }
    const auto inquiry = std::make_shared<Inquiry>();
    for (const Source &source : sources) {
        const auto take = [inquiry, &source, longest, answered](const QDBusMessage &answer) {
            inquiry->seconds = std::max(inquiry->seconds, secondsIn(answer, source, longest));
            if (--inquiry->unanswered == 0)
                answered(inquiry->seconds);
        };
        ZELKBusCall::send(*m_bus, question(source), this, take, timeoutMilliseconds);
    }
}
