#pragma once

#include <QProcess>

/// Lets polkit ask this process's user for a password on the terminal, as long as the object lives. Where a
/// desktop asks, it goes on doing so; and without a terminal, or for the administrator, nothing is done.
class ZELKTerminalAuthentication
{
public:
    /// Blocks until polkit knows, or cannot be told.
    ZELKTerminalAuthentication();
    ~ZELKTerminalAuthentication();
    ZELKTerminalAuthentication(const ZELKTerminalAuthentication &) = delete;
    ZELKTerminalAuthentication &operator=(const ZELKTerminalAuthentication &) = delete;

private:
    QProcess m_agent;
};
