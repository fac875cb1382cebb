#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QObject>

#include <functional>

/// The store's call-back service. Only the protocol's one method can be reached from the bus.
class ZELKLWCUpdateService : public QObject
{
    Q_OBJECT

public:
    explicit ZELKLWCUpdateService(std::function<void()> eventsDidChange);

    /// False when the path is taken.
    bool registerOn(QDBusConnection bus, const QString &path);
};

/// The method as the bus sees it.
class ZELKLWCUpdateAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.zelk.lullwatch.ZELKLWAUpdateProtocol")

public:
    ZELKLWCUpdateAdaptor(QObject *service, std::function<void()> eventsDidChange);

public Q_SLOTS:
    Q_NOREPLY void eventsDidChange();

private:
    std::function<void()> m_eventsDidChange;
};
