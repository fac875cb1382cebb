#include "ZELKLWAControlService.h"

#include "ZELKAssertion.h"
#include "ZELKBusCall.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"

#include <QDBusMessage>
#include <QDBusReply>

ZELKLWAControlService::ZELKLWAControlService(const QString &version, ZELKLWADefaults &defaults,
                                             const QDBusConnection &bus, bool forAllUsers, QObject *parent)
    : QObject(parent)
    , m_version(version)
    , m_defaults(defaults)
    , m_bus(bus)
    , m_forAllUsers(forAllUsers)
{
    if (m_forAllUsers)
        m_removal.emplace(m_bus, ZELKInstalledAgent());
}

bool ZELKLWAControlService::removeAgentFiles(const QByteArray &authorization)
{
    if (!m_removal || !calledFromDBus())
        return false;
    setDelayedReply(true);
    zelkGuard([&] { m_removal->removeAgentFiles(authorization, message()); });
    return false;
}

void ZELKLWAControlService::setDefaultsWithDictionary(const QVariantMap &defaults)
{
    if (!m_forAllUsers || !calledFromDBus()) {
        zelkGuard([&] { m_defaults.setDefaultsWithDictionary(defaults); });
        return;
    }
    const QString caller = message().service();
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetConnectionUnixUser"));
    question << caller;
    ZELKBusCall::send(m_bus, question, this, [this, caller, defaults](const QDBusMessage &answer) {
        const QDBusReply<uint> user = answer;
        if (user.isValid() && user.value() == 0)
            m_defaults.setDefaultsWithDictionary(defaults);
        else
            ZELKConsole::log(
                ZELKFormat("Defaults from %@ are refused: only an administrator may set them.", {caller}));
    });
}
