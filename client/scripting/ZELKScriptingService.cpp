#include "ZELKScriptingService.h"

#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogSlice.h"

#include <QDBusConnectionInterface>

ZELKScriptingService::ZELKScriptingService(const QDBusConnection &bus, const QString &name,
                                           const ZELKScriptObjects::Subject &subject)
    : m_bus(bus)
    , m_name(name)
    , m_tree(subject)
    , m_databasePath(subject.log.objectSpecifier())
    , m_slicePath(subject.slice.objectSpecifier())
{
    if (!m_bus.isConnected())
        return;
    // Not one object with all that is below it: other services of this program stand there, too.
    const bool isThere = m_bus.registerVirtualObject(ZELKScriptObjects::applicationPath(), &m_tree) &&
                         m_bus.registerVirtualObject(m_databasePath, &m_tree, QDBusConnection::SubPath) &&
                         m_bus.registerVirtualObject(m_slicePath, &m_tree);
    if (!isThere || !m_bus.interface()->registerService(m_name, QDBusConnectionInterface::QueueService,
                                                        QDBusConnectionInterface::DontAllowReplacement))
        ZELKConsole::log(ZELKFormat("Scripts cannot reach %@: %@", {m_name, m_bus.lastError().message()}));
}

ZELKScriptingService::~ZELKScriptingService()
{
    if (!m_bus.isConnected())
        return;
    m_bus.interface()->unregisterService(m_name);
    for (const QString &path : {ZELKScriptObjects::applicationPath(), m_databasePath, m_slicePath})
        m_bus.unregisterObject(path);
}
