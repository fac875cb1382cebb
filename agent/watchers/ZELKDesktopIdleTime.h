#pragma once

#include <QDBusConnection>
#include <QObject>

#include <functional>
#include <optional>

/// How long nobody has touched the computer, as the desktops of a session know it. The login manager does
/// not: the moment of its hint is the one when the desktop gave it, so that by the hint nobody has ever idled
/// long.
class ZELKDesktopIdleTime : public QObject
{
    Q_OBJECT

public:
    /// Without a bus nobody tells.
    explicit ZELKDesktopIdleTime(std::optional<QDBusConnection> sessionBus, QObject *parent = nullptr);

    /// The answers are waited for no longer than this.
    static constexpr int timeoutMilliseconds = 500;
    /// Nobody calls less than this idle; a smaller number of milliseconds is one of seconds.
    static constexpr double fewestMilliseconds = 10000.0;

    /// Seconds; nothing when no desktop tells. Where several do, the longest: who forwards another's idleness
    /// may have begun later. More than `longest`, which is how long the machine runs, is nonsense.
    using Answer = std::function<void(std::optional<double> seconds)>;
    void request(double longest, const Answer &answered);

private:
    std::optional<QDBusConnection> m_bus;
};
