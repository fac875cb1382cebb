#pragma once

#include <QDBusConnection>
#include <QString>

namespace ZELKBusNames {

/// True when somebody on the bus owns the name now. Never starts a service; no bus and no answer are a no.
bool hasOwner(const QDBusConnection &bus, const QString &name, int timeoutMilliseconds);

} // namespace ZELKBusNames
