#pragma once

#include "ZELKAssertion.h"

/// What `action` raises, as "file:line message"; empty when it raises nothing.
template <typename Action>
QString raisedAt(const Action &action)
{
    try {
        action();
    } catch (const ZELKAssertionFailure &failure) {
        return failure.file() + QLatin1Char(':') + QString::number(failure.line()) + QLatin1Char(' ') +
               failure.message();
    }
    return {};
}

/// The message alone.
template <typename Action>
QString raised(const Action &action)
{
    return raisedAt(action).section(QLatin1Char(' '), 1);
}
