#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

/// UPower on a bus, decoded: its devices, their properties and what changes of them. Never blocks, never
/// starts the service, and has no timer: UPower tells of itself. What UPower says wrongly is one console line
/// and otherwise not said.
class ZELKUPowerPort : public QObject
{
    Q_OBJECT

public:
    explicit ZELKUPowerPort(const QDBusConnection &bus, QObject *parent = nullptr);
    ~ZELKUPowerPort() override;

    static QString serviceName() { return QStringLiteral("org.freedesktop.UPower"); }

    /// Asks for everything and listens from then on. Begins anew when it listens already.
    void start();
    void stop();
    /// Stops, and is to be started anew on this one.
    void setBus(const QDBusConnection &bus);
    /// Asks UPower to look at a device, then for all its properties. There are versions that can not be
    /// asked: then nothing happens.
    void refresh(const QString &path);
    /// Hears no more of a device.
    void ignore(const QString &path);

Q_SIGNALS:
    /// All that there was at the start has been told.
    void didStart();
    /// UPower does not answer; told instead of didStart.
    void didFail();
    /// All properties of a device, and some that changed.
    void deviceDidArrive(const QString &path, const QVariantMap &properties);
    void deviceDidChange(const QString &path, const QVariantMap &changes);
    void deviceDidLeave(const QString &path);
    /// What the daemon says of the computer.
    void onBatteryDidChange(std::optional<bool> onBattery);

private Q_SLOTS:
    void deviceAdded(const QDBusMessage &signal);
    void deviceRemoved(const QDBusMessage &signal);
    void propertiesChanged(const QDBusMessage &signal);

private:
    using Handler = std::function<void(const QDBusMessage &)>;
    void ask(const QDBusMessage &call, Handler answered);
    void answerDidCome();
    void listen(const QString &path, bool on);
    void listenToDaemon(bool on);
    void take(const QString &path);
    void read(const QString &path);
    void tellOfDaemon(const QVariantMap &properties);

    QDBusConnection m_bus;
    QSet<QString> m_devices;       ///< that are listened to
    QHash<QString, int> m_changes; // how many were told, by device
    /// Receives the answers; goes with stop(), and the answers with it.
    std::unique_ptr<QObject> m_session;
    int m_answersToStart = 0;
    bool m_started = false;
};
