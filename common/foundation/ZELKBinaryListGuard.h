#pragma once

#include <QString>

#include <string_view>

/// Looks over a binary property list before the library reads it: every reference and length that can be
/// reached from the root, cycles, nesting, and what shared references unfold to.
namespace ZELKBinaryListGuard {

/// Why the list is refused; empty when it is sound.
QString objectionTo(std::string_view bytes);

} // namespace ZELKBinaryListGuard
