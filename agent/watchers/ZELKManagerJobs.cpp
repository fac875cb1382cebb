#include "ZELKManagerJobs.h"

#include "ZELKAssertion.h"
#include "ZELKBusCall.h"

#include <QDBusArgument>

namespace {

constexpr QLatin1String service("org.freedesktop.systemd1");
constexpr QLatin1String managerPath("/org/freedesktop/systemd1");
constexpr QLatin1String managerInterface("org.freedesktop.systemd1.Manager");

constexpr QLatin1String shutdownUnits[] = {QLatin1String("poweroff.target"), QLatin1String("halt.target"),
                                           QLatin1String("reboot.target"), QLatin1String("kexec.target"),
                                           QLatin1String("soft-reboot.target")};

constexpr QLatin1String sleepUnits[] = {
    QLatin1String("systemd-suspend.service"), QLatin1String("systemd-hibernate.service"),
    QLatin1String("systemd-hybrid-sleep.service"), QLatin1String("systemd-suspend-then-hibernate.service")};

QDBusMessage listJobs()
{
    return QDBusMessage::createMethodCall(service, managerPath, managerInterface, QStringLiteral("ListJobs"));
}

ZELKManagerJobs::Answer readJobs(const QDBusMessage &answer)
{
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String("a(usssoo)"))
        return {};
    ZELKManagerJobs::Answer result{true, std::nullopt};
    const auto list = answer.arguments().constFirst().value<QDBusArgument>();
    for (list.beginArray(); !list.atEnd();) {
        uint number = 0;
        QString unit, type, state;
        QDBusObjectPath job, path;
        list.beginStructure();
        list >> number >> unit >> type >> state >> job >> path;
        list.endStructure();
        if (const auto kind = ZELKShutdownKindOfTarget(unit); kind && type == QLatin1String("start"))
            result.kind = kind;
    }
    list.endArray();
    return result;
}

} // namespace

ZELKManagerJobs::ZELKManagerJobs(const QDBusConnection &systemBus, QObject *parent)
    : QObject(parent)
    , m_bus(systemBus)
    , m_service(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&m_service, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                zelkGuard([&] { setThere(!owner.isEmpty()); });
            });
}

void ZELKManagerJobs::start()
{
    if (m_running)
        return;
    m_running = true;
    connectSignals(true);
    ZELKBusCall::askForOwner(m_bus, service, this, [this](bool isThere) { setThere(isThere); });
}

void ZELKManagerJobs::stop()
{
    if (!m_running)
        return;
    m_running = false;
    connectSignals(false);
}

void ZELKManagerJobs::setBus(const QDBusConnection &systemBus)
{
    const bool runs = m_running;
    stop();
    m_bus = systemBus;
    m_service.setConnection(systemBus);
    if (runs)
        start();
}

/// One rule of the bus for each unit; the unit is the signals' third argument.
void ZELKManagerJobs::connectSignals(bool connects)
{
    const auto follow = [&](const char *signal, const QString &unit, const char *signature,
                            const char *slot) {
        const QString name = QString::fromLatin1(signal), form = QString::fromLatin1(signature);
        const QStringList match{QString(), QString(), unit};
        if (connects)
            m_bus.connect(service, managerPath, managerInterface, name, match, form, this, slot);
        else
            m_bus.disconnect(service, managerPath, managerInterface, name, match, form, this, slot);
    };
    for (const QLatin1String unit : shutdownUnits)
        follow("JobNew", unit, "uos", SLOT(jobDidStart(uint, QDBusObjectPath, QString)));
    for (const QLatin1String unit : sleepUnits)
        follow("JobRemoved", unit, "uoss", SLOT(jobDidFinish(uint, QDBusObjectPath, QString, QString)));
}

void ZELKManagerJobs::setThere(bool isThere)
{
    if (!m_running)
        return;
    m_isThere = isThere;
    Q_EMIT presenceChanged(isThere);
}

void ZELKManagerJobs::requestShutdownKind(const std::function<void(Answer)> &answered)
{
    ZELKBusCall::send(
        m_bus, listJobs(), this, [answered](const QDBusMessage &answer) { answered(readJobs(answer)); },
        timeoutMilliseconds);
}

ZELKManagerJobs::Answer ZELKManagerJobs::shutdownKind() const
{
    QDBusMessage call = listJobs();
    call.setAutoStartService(false);
    return readJobs(m_bus.call(call, QDBus::Block, timeoutMilliseconds));
}

/// The signal does not tell what the job does to the unit; the list of jobs does. A manager that does not
/// answer is busy with the end.
void ZELKManagerJobs::jobDidStart(uint, const QDBusObjectPath &, const QString &unit)
{
    zelkGuard([&] {
        const auto kind = ZELKShutdownKindOfTarget(unit);
        if (!kind)
            return;
        ++m_questions;
        requestShutdownKind([this, kind](const Answer &answer) {
            --m_questions;
            if (m_running && (answer.kind || !answer.isKnown))
                Q_EMIT shutdownJobDidStart(answer.kind.value_or(*kind));
        });
    });
}

/// Every result but one means that the machine did not sleep, or not all the way.
void ZELKManagerJobs::jobDidFinish(uint, const QDBusObjectPath &, const QString &, const QString &result)
{
    zelkGuard([&] { Q_EMIT sleepJobDidFinish(result == QLatin1String("done")); });
}
