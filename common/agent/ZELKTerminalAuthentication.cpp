#include "ZELKTerminalAuthentication.h"

#include "ZELKAuthorizationForm.h"

#include <QStringList>

#include <array>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr int millisecondsToRegister = 5000;
constexpr int millisecondsToEnd = 1000;

bool hasTerminal()
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal >= 0)
        ::close(terminal);
    return terminal >= 0;
}

/// On a desktop its own dialog goes before the terminal. Elsewhere that must not be asked for: polkit passes
/// over what only steps in for another where there is no session.
QStringList precedence()
{
    const bool isDesktop =
        qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qEnvironmentVariableIsSet("DISPLAY");
    return isDesktop ? QStringList{QStringLiteral("--fallback")} : QStringList();
}

/// Returns when nobody has the other end any more.
void waitForEnd(int pipe)
{
    pollfd end{pipe, POLLIN, 0};
    ::poll(&end, 1, millisecondsToRegister);
}

} // namespace

/// The program closes the descriptor it is given when polkit knows it, and by ending when that failed.
ZELKTerminalAuthentication::ZELKTerminalAuthentication()
{
    const auto process = ZELKAuthorizationForm::ofProcess(::getpid());
    std::array<int, 2> ends{};
    if (::geteuid() == 0 || !process || !hasTerminal() || ::pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    const auto [ours, theirs] = ends;
    m_agent.setProgram(QStringLiteral("pkttyagent"));
    m_agent.setArguments(
        precedence() +
        QStringList{QStringLiteral("--process"),
                    QStringLiteral("%1,%2").arg(process->processIdentifier).arg(process->startTime),
                    QStringLiteral("--notify-fd"), QString::number(theirs)});
    m_agent.setInputChannelMode(QProcess::ForwardedInputChannel);
    m_agent.setStandardOutputFile(QProcess::nullDevice());
    m_agent.setStandardErrorFile(QProcess::nullDevice());
    m_agent.setChildProcessModifier([number = theirs] { ::fcntl(number, F_SETFD, 0); });
    m_agent.start();
    ::close(theirs);
    if (m_agent.waitForStarted())
        waitForEnd(ours);
    ::close(ours);
}

ZELKTerminalAuthentication::~ZELKTerminalAuthentication()
{
    if (m_agent.state() == QProcess::NotRunning)
        return;
    m_agent.terminate();
    if (!m_agent.waitForFinished(millisecondsToEnd))
        m_agent.kill();
}
