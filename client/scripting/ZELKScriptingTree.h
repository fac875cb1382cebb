#pragma once

#include "ZELKScriptObjects.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>

/// Answers the bus for every path of the objects that scripts address, without one of them being there before
/// it is asked for.
class ZELKScriptingTree : public QDBusVirtualObject
{
    Q_OBJECT

public:
    explicit ZELKScriptingTree(ZELKScriptObjects::Subject subject);

    QString introspect(const QString &path) const override;
    /// False for what is none of ours: the bus refuses it then.
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusMessage answer(ZELKScriptObject &object, const QDBusMessage &message) const;

    ZELKScriptObjects::Subject m_subject;
};
