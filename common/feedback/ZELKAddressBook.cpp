#include "ZELKAddressBook.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QVariantMap>

#include <pwd.h>
#include <unistd.h>

#include <utility>
#include <vector>

namespace {

constexpr int timeLimit = 500; // milliseconds, of each of the two questions

const QString accounts = QStringLiteral("org.freedesktop.Accounts");

std::optional<QVariant> ask(const QDBusConnection &bus, const QString &path, const QString &interface,
                            const QString &method, const QVariantList &arguments)
{
    QDBusMessage question = QDBusMessage::createMethodCall(accounts, path, interface, method);
    question.setArguments(arguments);
    const QDBusMessage reply = bus.call(question, QDBus::Block, timeLimit);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt;
    return reply.arguments().constFirst();
}

} // namespace

ZELKAddressBookException::ZELKAddressBookException(const QString &reason)
    : std::runtime_error(reason.toStdString())
    , m_reason(reason)
{
}

ZELKAccountEntry ZELKAccountEntry::fromFields(const QString &loginName, const QString &comment)
{
    QString capital = loginName;
    if (!capital.isEmpty())
        capital[0] = capital[0].toUpper();
    QString fullName = comment.section(QLatin1Char(','), 0, 0).trimmed();
    return {loginName, fullName.replace(QLatin1Char('&'), capital)};
}

std::optional<ZELKAccountEntry> ZELKAccountEntry::ofThisUser()
{
    std::vector<char> room(16384);
    passwd entry{};
    passwd *found = nullptr;
    if (getpwuid_r(getuid(), &entry, room.data(), room.size(), &found) != 0 || !found)
        return std::nullopt;
    return fromFields(QString::fromLocal8Bit(found->pw_name), QString::fromLocal8Bit(found->pw_gecos));
}

ZELKSystemAddressBook::ZELKSystemAddressBook(const QDBusConnection &systemBus)
    : m_bus(systemBus)
{
}

std::optional<ZELKAddressCard> ZELKSystemAddressBook::askAccounts() const
{
    if (!m_bus.isConnected())
        return std::nullopt;
    const auto user = ask(m_bus, QStringLiteral("/org/freedesktop/Accounts"), accounts,
                          QStringLiteral("FindUserById"), {qlonglong(getuid())});
    if (!user || user->userType() != qMetaTypeId<QDBusObjectPath>())
        return std::nullopt;
    const auto answer =
        ask(m_bus, user->value<QDBusObjectPath>().path(), QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("GetAll"), {accounts + QStringLiteral(".User")});
    if (!answer)
        return std::nullopt;
    const auto properties = qdbus_cast<QVariantMap>(*answer);
    return ZELKAddressCard{properties.value(QStringLiteral("RealName")).toString(),
                           {},
                           properties.value(QStringLiteral("Email")).toString()};
}

ZELKAddressCard ZELKSystemAddressBook::me() const
{
    if (!std::exchange(m_wasAsked, true))
        m_account = askAccounts();
    const std::optional<ZELKAccountEntry> entry = ZELKAccountEntry::ofThisUser();
    const QString email = qEnvironmentVariable("EMAIL");
    if (!m_account && !entry && email.isEmpty())
        throw ZELKAddressBookException(QStringLiteral("nobody knows this user"));
    ZELKAddressCard card = m_account.value_or(ZELKAddressCard());
    if (card.firstName.isEmpty() && entry)
        card.firstName = entry->fullName;
    if (card.email.isEmpty())
        card.email = email;
    return card;
}
