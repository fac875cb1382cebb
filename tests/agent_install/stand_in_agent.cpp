// An agent that records nothing: it serves what installing and removing it takes.
//
//   stand-in-agent [--system]
#include "ZELKAgentRemoval.h"
#include "ZELKServiceNames.h"

#include <QCoreApplication>
#include <QDBusContext>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

class ControlService : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.zelk.ZELKAgentServiceProtocol")

public:
    explicit ControlService(const QDBusConnection &bus)
        : m_removal(bus, ZELKInstalledAgent())
    {
    }

public Q_SLOTS:
    QString version() { return u"0.1.0"_s; }
    bool removeAgentFiles(const QByteArray &form)
    {
        setDelayedReply(true);
        m_removal.removeAgentFiles(form, message());
        return false;
    }

private:
    ZELKAgentRemoval m_removal;
};

/// What an agent has to be able to do in its sandbox, and what it must not.
bool canDoItsWork(bool isOfSystem)
{
    const QString folder = isOfSystem
                               ? qEnvironmentVariable("STATE_DIRECTORY")
                               : QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                     u'/' + ZELKInstalledAgent::label();
    QFile records(folder + u"/records"_s),
        elsewhere((isOfSystem ? u"/var"_s : QDir::homePath()) + u"/elsewhere"_s);
    return records.open(QIODevice::WriteOnly) && !elsewhere.open(QIODevice::WriteOnly);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const bool isOfSystem = QCoreApplication::arguments().contains(u"--system"_s);
    QDBusConnection bus = isOfSystem ? QDBusConnection::systemBus() : QDBusConnection::sessionBus();
    ControlService service(bus);
    const QString name = ZELKInstalledAgent::label();
    const bool serves = bus.registerObject(ZELKServiceNames::controlServicePath(), &service,
                                           QDBusConnection::ExportAllSlots) &&
                        bus.registerService(ZELKServiceNames::controlServiceName(name)) &&
                        canDoItsWork(isOfSystem) && bus.registerService(name);
    return serves ? QCoreApplication::exec() : 1;
}

#include "stand_in_agent.moc"
