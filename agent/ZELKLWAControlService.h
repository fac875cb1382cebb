#pragma once

#include "ZELKAgentRemoval.h"
#include "ZELKLWADefaults.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>

#include <optional>

/// The control service's object; the bus sees only the methods of ZELKAgentServiceProtocol.
class ZELKLWAControlService : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    /// `forAllUsers`: an agent of the system was installed with privilege, and not everybody may change it.
    ZELKLWAControlService(const QString &version, ZELKLWADefaults &defaults, const QDBusConnection &bus,
                          bool forAllUsers, QObject *parent = nullptr);

    QString version() const { return m_version; }
    /// Answers later, and yes only when the caller was entitled and the files are gone. An agent of the
    /// session installed nothing with privilege, so it has nothing to remove: false, whatever the
    /// authorization.
    bool removeAgentFiles(const QByteArray &authorization);
    /// On the system bus from the administrator alone; anybody else's are one console line.
    void setDefaultsWithDictionary(const QVariantMap &defaults);

private:
    QString m_version;
    ZELKLWADefaults &m_defaults;
    QDBusConnection m_bus;
    bool m_forAllUsers;
    std::optional<ZELKAgentRemoval> m_removal;
};
