#pragma once

#include "ZELKApplicationSettings.h"

#include <optional>

/// The history that comes with the application, for those who want to see a full window at once. It has a
/// profile of its own, and so nothing to do with the user's own log.
namespace ZELKSampleLog {

/// The name of its profile.
QString profile();

/// Reads the bundle's history into the profile's cache, unless the very same was read before. A history that
/// has changed begins a new cache: what is no longer in it would stay in the old one. What went wrong, if
/// anything.
std::optional<QString> prepare(const ZELKApplicationSettings &settings);

} // namespace ZELKSampleLog
