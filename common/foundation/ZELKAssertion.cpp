#include "ZELKAssertion.h"

#include "ZELKConsole.h"

#include <exception>
#include <utility>

namespace {

/// The program's one assertion handler.
ZELKFailureObserver failureObserver;

void report(const ZELKAssertionFailure &failure)
{
    QString place = failure.file();
    if (failure.line() != 0)
        place += QLatin1Char(':') + QString::number(failure.line());
    ZELKConsole::log(place.isEmpty() ? failure.message()
                                     : failure.message() + QStringLiteral(" (") + place + QLatin1Char(')'));
    const ZELKFailureObserver observer = failureObserver;
    if (observer)
        observer(failure);
}

/// A report may fail in its turn, in the observer; that must not come out of the guard.
void reportSafely(const QString &message, const QString &file, int line) noexcept
{
    try {
        report(ZELKAssertionFailure(message, file, line));
    } catch (...) {
        qCritical("A failure could not be reported.");
    }
}

} // namespace

ZELKAssertionFailure::ZELKAssertionFailure(const QString &message, const QString &file, int line)
    : std::runtime_error(message.toStdString())
    , m_message(message)
    , m_file(file)
    , m_line(line)
{
}

void ZELKAssertion::fail(const QString &file, int line, const QString &message)
{
    throw ZELKAssertionFailure(message, file, line);
}

void ZELKAssertion::failParameter(const QString &file, int line, const char *parameter)
{
    fail(file, line, ZELKFormat("Invalid parameter not satisfying: %s", {parameter}));
}

void zelkSetFailureObserver(ZELKFailureObserver observer)
{
    failureObserver = std::move(observer);
}

bool zelkGuard(const std::function<void()> &body) noexcept
{
    try {
        body();
        return true;
    } catch (const ZELKAssertionFailure &failure) {
        reportSafely(failure.message(), failure.file(), failure.line());
    } catch (const std::exception &failure) {
        reportSafely(QString::fromLocal8Bit(failure.what()), {}, 0);
    } catch (...) {
        reportSafely(QStringLiteral("An unknown exception was thrown."), {}, 0);
    }
    return false;
}
