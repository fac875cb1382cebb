#pragma once

#include "ZELKLWADefaults.h"

#include <QByteArray>
#include <QObject>

/// The control service's object; the bus sees only the methods of ZELKAgentServiceProtocol.
class ZELKLWAControlService : public QObject
{
    Q_OBJECT

public:
    ZELKLWAControlService(const QString &version, ZELKLWADefaults &defaults, QObject *parent = nullptr);

    QString version() const { return m_version; }
    /// An agent of the session installed nothing with privilege, so it has nothing to remove: false, whatever
    /// the authorization.
    bool removeAgentFiles(const QByteArray &authorization);
    void setDefaultsWithDictionary(const QVariantMap &defaults);

private:
    QString m_version;
    ZELKLWADefaults &m_defaults;
};
