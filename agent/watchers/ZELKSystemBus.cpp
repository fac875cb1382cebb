#include "ZELKSystemBus.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"

#include <QFileInfo>
#include <QUrl>

namespace {

/// Of an address as "unix:path=/a%20file,guid=...;tcp:...": the first is as good as the others.
QString socketOf(const QString &address)
{
    const QString first = address.section(QLatin1Char(';'), 0, 0);
    const QLatin1String transport("unix:"), path("path=");
    if (!first.startsWith(transport))
        return {};
    for (const QString &part : first.mid(transport.size()).split(QLatin1Char(',')))
        if (part.startsWith(path))
            return QUrl::fromPercentEncoding(part.mid(path.size()).toUtf8());
    return {};
}

/// The folder that a file is in, or as much of the way there as exists.
QString folderTowards(const QString &file)
{
    QString folder = QFileInfo(file).path();
    while (!QFileInfo::exists(folder))
        folder = QFileInfo(folder).path();
    return folder;
}

} // namespace

ZELKSystemBus::ZELKSystemBus(const QString &address, QObject *parent)
    : QObject(parent)
    , m_address(address)
    , m_socket(socketOf(address))
    , m_bus(connectAnew())
{
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, [this] { zelkGuard([this] { attempt(); }); });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this,
            [this] { zelkGuard([this] { socketMayHaveChanged(); }); });
    if (!m_bus.isConnected())
        await();
}

ZELKSystemBus::~ZELKSystemBus()
{
    dropConnection();
}

QString ZELKSystemBus::usualAddress()
{
    return qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS",
                                QStringLiteral("unix:path=/run/dbus/system_bus_socket"));
}

/// Each connection has a name that no other had: one that lost its bus keeps its own as long as it is used.
QDBusConnection ZELKSystemBus::connectAnew()
{
    const QString name =
        QStringLiteral("system bus %1 of %2").arg(++m_connections).arg(quintptr(this), 0, 16);
    QDBusConnection bus = QDBusConnection::connectToBus(m_address, name);
    if (bus.isConnected())
        bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                    QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                    SLOT(didDisconnect()));
    return bus;
}

void ZELKSystemBus::didDisconnect()
{
    zelkGuard([this] {
        if (m_bus.isConnected())
            return;
        dropConnection();
        ZELKConsole::log(QStringLiteral("The system bus went away; its return is waited for."));
        await();
        Q_EMIT changed(m_bus);
    });
}

/// What is left of it is used up: libdbus ends a program that wants an answer over a connection whose bus has
/// gone, and answers all with an error where there never was one.
void ZELKSystemBus::dropConnection()
{
    const QString name = m_bus.name();
    m_bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
}

/// Watches before it looks, so that nothing falls in between.
void ZELKSystemBus::await()
{
    if (!m_socket.isEmpty())
        watchNearestFolder();
    m_next.stop();
    if (!m_socket.isEmpty() && !QFileInfo::exists(m_socket))
        return; // its coming will be a sign
    m_attemptsLeft = attemptsASign;
    m_next.start(millisecondsToTheFirst);
}

/// Folders on the way may come and go while they are looked for: the one watched must be the nearest
/// afterwards too. Not for ever, since one that may not be read cannot be watched.
void ZELKSystemBus::watchNearestFolder()
{
    constexpr int mostLooks = 20;
    for (int look = 0; look < mostLooks; ++look) {
        const QString folder = folderTowards(m_socket);
        if (m_watcher.directories() == QStringList{folder})
            return;
        stopWatching();
        m_watcher.addPath(folder);
    }
}

void ZELKSystemBus::stopWatching()
{
    if (const QStringList watched = m_watcher.directories(); !watched.isEmpty())
        m_watcher.removePaths(watched);
}

/// Each change of what is watched is a sign; it may not be what it was.
void ZELKSystemBus::socketMayHaveChanged()
{
    stopWatching();
    await();
}

void ZELKSystemBus::attempt()
{
    const QDBusConnection bus = connectAnew();
    if (!bus.isConnected()) {
        QDBusConnection::disconnectFromBus(bus.name());
        if (--m_attemptsLeft > 0)
            m_next.start(millisecondsToTheFirst << (attemptsASign - m_attemptsLeft));
        return;
    }
    stopWatching();
    m_bus = bus;
    ZELKConsole::log(QStringLiteral("The system bus is there."));
    Q_EMIT changed(m_bus);
}
