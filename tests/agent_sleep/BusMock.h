#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryFile>
#include <QTimer>
#include <QVariantMap>

using namespace Qt::StringLiterals;

/// A service of the system, mocked on the private system bus for as long as this lives.
class BusMock
{
public:
    static constexpr int millisecondsToStart = 20000;

    /// `arguments` are python-dbusmock's. Returns when `service` owns its name.
    BusMock(const QString &service, const QString &path, const QString &interface,
            const QStringList &arguments)
        : m_service(service)
        , m_path(path)
        , m_interface(interface)
    {
        QEventLoop loop;
        const QDBusServiceWatcher watcher(service, bus(), QDBusServiceWatcher::WatchForRegistration);
        QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, [&] { loop.exit(0); });
        QTimer::singleShot(millisecondsToStart, &loop, [&] { loop.exit(1); });
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        if (!m_log.open())
            qFatal("the mock has no place for its log");
        m_process.setStandardOutputFile(m_log.fileName());
        m_process.start(u"/usr/bin/python3"_s,
                        QStringList{u"-m"_s, u"dbusmock"_s, u"--system"_s} + arguments);
        if (loop.exec() != 0)
            qFatal("%s did not come", qPrintable(service));
    }
    ~BusMock()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// A connection of the test's own.
    static QDBusConnection bus()
    {
        return QDBusConnection::connectToBus(QDBusConnection::SystemBus, u"test"_s);
    }

    QDBusMessage call(const QString &method, const QVariantList &arguments = {}) const
    {
        return call(m_path, m_interface, method, arguments);
    }
    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(m_service, path, interface, method);
        message.setArguments(arguments);
        const QDBusMessage answer = bus().call(message, QDBus::Block, 5000);
        if (answer.type() == QDBusMessage::ErrorMessage)
            qWarning("%s: %s", qPrintable(method), qPrintable(answer.errorMessage()));
        return answer;
    }
    /// Of the mock itself.
    void tell(const QString &method, const QVariantList &arguments, const QString &path = {}) const
    {
        call(path.isEmpty() ? m_path : path, u"org.freedesktop.DBus.Mock"_s, method, arguments);
    }
    void emitSignal(const QString &name, const QString &signature, const QVariantList &arguments) const
    {
        tell(u"EmitSignal"_s, {m_interface, name, signature, QVariant(arguments)});
    }
    /// How often a method was called.
    int calls(const QString &method) const
    {
        return count(call(m_path, u"org.freedesktop.DBus.Mock"_s, u"GetMethodCalls"_s, {method}));
    }
    /// Whether all the properties of one of its objects were asked for.
    bool wasAskedFor(const QString &path) const
    {
        QFile log(m_log.fileName());
        return log.open(QIODevice::ReadOnly) && log.readAll().contains(" GetAll " + path.toUtf8() + ' ');
    }
    /// The elements of an answer that is a list.
    static int count(const QDBusMessage &answer)
    {
        const auto list = answer.arguments().value(0).value<QDBusArgument>();
        int elements = 0;
        for (list.beginArray(); !list.atEnd(); ++elements)
            list.asVariant();
        list.endArray();
        return elements;
    }
    void updateProperties(const QVariantMap &properties) const
    {
        tell(u"UpdateProperties"_s, {m_interface, properties});
    }

private:
    QString m_service;
    QString m_path;
    QString m_interface;
    QTemporaryFile m_log;
    QProcess m_process;
};
