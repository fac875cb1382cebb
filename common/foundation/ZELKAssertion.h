#pragma once

#include "ZELKFormat.h"

#include <QString>

#include <functional>
#include <stdexcept>

/// A failure of programming or configuration. Thrown by ZELKAssertion::fail; Qt may not see it, so every
/// slot, timer, D-Bus method and C call-back of ours runs its body through zelkGuard.
class ZELKAssertionFailure : public std::runtime_error
{
public:
    ZELKAssertionFailure(const QString &message, const QString &file, int line);

    const QString &message() const { return m_message; }
    /// Product folder and class ("client/ZELKLWCStore"), whichever folder the source stands in.
    const QString &file() const { return m_file; }
    /// A stable location code where one is fixed, else 0.
    int line() const { return m_line; }

private:
    QString m_message;
    QString m_file;
    int m_line;
};

namespace ZELKAssertion {

/// Throws ZELKAssertionFailure with that message.
[[noreturn]] void fail(const QString &file, int line, const QString &message);
/// Throws "Invalid parameter not satisfying: <parameter>".
[[noreturn]] void failParameter(const QString &file, int line, const char *parameter);

} // namespace ZELKAssertion

/// Told of each failure that a guard caught, after its console line; the application shows it.
using ZELKFailureObserver = std::function<void(const ZELKAssertionFailure &)>;
void zelkSetFailureObserver(ZELKFailureObserver observer);

/// Runs `body`; catches what it throws, writes one console line and tells the observer. True when nothing was
/// thrown.
bool zelkGuard(const std::function<void()> &body) noexcept;
