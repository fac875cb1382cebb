#pragma once

#include <cstddef>

/// What a property list may hold, whichever form it comes in.
namespace ZELKListLimits {

constexpr std::size_t deepestLevel = 128;
constexpr std::size_t mostValues = 1'000'000;
/// A binary list may name one text many times; that much more than its own bytes may it unfold to.
constexpr std::size_t mostUnfoldedBytes = std::size_t(64) << 20;

} // namespace ZELKListLimits
