#pragma once

#include <QDBusConnection>
#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

/// The system bus, for a program that may outlive it. A connection that lost its bus stays without; when the
/// bus is started again, this makes another.
///
/// That it is there again, its socket tells: while the bus is away, and only then, the folder in which the
/// socket is made is watched. There is no polling; but a socket may be seen before somebody listens to it, so
/// that a few attempts follow each of its signs, ever slower. A bus that is reached without a file says
/// nothing when it comes: for that one the attempts after its loss are all.
class ZELKSystemBus : public QObject
{
    Q_OBJECT

public:
    /// Connects, or waits for the bus when it is not there. Connecting blocks until the bus has answered;
    /// where a service manager holds the socket, until it has started the bus.
    explicit ZELKSystemBus(const QString &address, QObject *parent = nullptr);
    ~ZELKSystemBus() override;

    /// What the environment names, else where the bus is everywhere.
    static QString usualAddress();

    /// The latest; one that answers everything with an error while the bus is away.
    QDBusConnection connection() const { return m_bus; }

Q_SIGNALS:
    /// The bus went away (`bus` is not connected), or is there again.
    void changed(const QDBusConnection &bus);

private Q_SLOTS:
    void didDisconnect();

private:
    static constexpr int attemptsASign = 7;
    static constexpr int millisecondsToTheFirst = 100; // twice as long to each next

    QDBusConnection connectAnew();
    void dropConnection();
    void await();
    void watchNearestFolder();
    void stopWatching();
    void socketMayHaveChanged();
    void attempt();

    QString m_address;
    QString m_socket; ///< empty when the address is no file
    int m_connections = 0;
    QDBusConnection m_bus;
    QFileSystemWatcher m_watcher;
    QTimer m_next;
    int m_attemptsLeft = 0;
};
