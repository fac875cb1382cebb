#pragma once

#include "ZELKScriptingTree.h"

#include <QDBusConnection>

/// Stands for the application on the bus, under its name, while it lives. Where another run has the name,
/// this one waits for it.
class ZELKScriptingService
{
public:
    /// A bus that cannot be used is one line on the console: nothing else depends on scripts.
    ZELKScriptingService(const QDBusConnection &bus, const QString &name,
                         const ZELKScriptObjects::Subject &subject);
    ~ZELKScriptingService();
    ZELKScriptingService(const ZELKScriptingService &) = delete;
    ZELKScriptingService &operator=(const ZELKScriptingService &) = delete;

private:
    QDBusConnection m_bus;
    QString m_name;
    ZELKScriptingTree m_tree;
    QString m_databasePath;
    QString m_slicePath;
};
