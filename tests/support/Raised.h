#pragma once

#include "ZELKAssertion.h"

/// The message that `action` raises; empty when it raises none.
template <typename Action>
QString raised(const Action &action)
{
    try {
        action();
    } catch (const ZELKAssertionFailure &failure) {
        return failure.message();
    }
    return {};
}
