#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <QTimer>

/// Who wants to hear of new events, and the telling. A burst is told of once, a second after its first event:
/// a client that fetched in the middle of it would not ask for that second again.
class ZELKLWAUpdateAnnouncer : public QObject
{
    Q_OBJECT

public:
    static constexpr int millisecondsOfABurst = 1000;
    static constexpr qsizetype mostRegistrations = 64;

    explicit ZELKLWAUpdateAnnouncer(const QDBusConnection &bus, QObject *parent = nullptr);

    /// Takes up `serviceName` for `caller` (its unique name) once the bus has said that somebody owns the
    /// name; a repeat changes nothing. It ends when the name changes hands or the caller leaves.
    void add(const QString &serviceName, const QString &caller);
    /// Only the caller that registered may.
    void remove(const QString &serviceName, const QString &caller);
    bool isEmpty() const { return m_callers.isEmpty(); }

    /// To be told of soon.
    void eventsDidChange();
    /// Tells at once; true when there was somebody to tell.
    bool announceNow();

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
    QTimer m_burst;
};
