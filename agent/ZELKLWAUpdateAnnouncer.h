#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>

/// Who wants to hear of new events, and the telling.
class ZELKLWAUpdateAnnouncer : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype mostRegistrations = 64;
    static constexpr qsizetype mostOfACaller = 4;

    explicit ZELKLWAUpdateAnnouncer(const QDBusConnection &bus, QObject *parent = nullptr);

    /// Takes up `serviceName` for `caller` (its unique name) once the bus has said that the caller owns the
    /// name, for a name of somebody else's could be taken from them; a repeat changes nothing. It ends when
    /// the name changes hands or the caller leaves.
    void add(const QString &serviceName, const QString &caller);
    /// Only the caller that registered may.
    void remove(const QString &serviceName, const QString &caller);
    bool isEmpty() const { return m_callers.isEmpty(); }

    /// Tells everybody, without waiting for them; true when there was somebody to tell.
    bool eventsDidChange();

Q_SIGNALS:
    /// After isEmpty() or who is told may have become another.
    void registrationsChanged();

private:
    void addOwned(const QString &serviceName, const QString &caller);
    void forget(const QString &name);
    void unwatchUnused();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QHash<QString, QString> m_callers; // by service name
    QStringList m_asking;              // names the bus was asked about
};
