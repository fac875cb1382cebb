#pragma once

#include "ZELKScriptObject.h"

#include <functional>
#include <memory>

class ZELKLWCLog;
class ZELKLWCLogEntry;
class ZELKLWCLogSlice;

/// What stands behind the paths below "/org/zelk/lullwatch". Dates are seconds since 1 January 1970 UTC, as
/// shells and Python count them.
namespace ZELKScriptObjects {

/// All to outlive the objects.
struct Subject
{
    QString version;
    ZELKLWCLog &log;
    ZELKLWCLogSlice &slice;
    /// Whether the application answers for a key.
    std::function<bool(const QString &key)> handlesKey;
};

/// The application itself, "…/database", "…/database/entries/N", "…/duplicates/M" of an entry, and
/// "…/visibleSlice". Null for a path that leads nowhere.
std::unique_ptr<ZELKScriptObject> objectAtPath(const Subject &subject, const QString &path);

QString applicationPath();

} // namespace ZELKScriptObjects
