#pragma once

#include <QDBusConnection>
#include <QString>

#include <functional>
#include <optional>
#include <stdexcept>

/// What is known of a person.
struct ZELKAddressCard
{
    QString firstName;
    QString lastName;
    QString email; ///< the primary one

    bool operator==(const ZELKAddressCard &) const = default;
};

/// What an address book throws that cannot be asked.
class ZELKAddressBookException : public std::runtime_error
{
public:
    explicit ZELKAddressBookException(const QString &reason);
    const QString &reason() const { return m_reason; }

private:
    QString m_reason;
};

/// Where people keep who they are.
class ZELKAddressBook
{
public:
    virtual ~ZELKAddressBook() = default;
    /// The user's own card. What is not known of it is empty.
    virtual ZELKAddressCard me() const = 0;
};

/// What the system knows of an account, without its accounts service.
struct ZELKAccountEntry
{
    QString loginName;
    QString fullName; ///< the first field of the entry's comment, "&" replaced by the login name
    /// This process's user, out of passwd; nothing when that has no such user.
    static std::optional<ZELKAccountEntry> ofThisUser();
    /// Takes the comment field apart.
    static ZELKAccountEntry fromFields(const QString &loginName, const QString &comment);
};

/// The accounts service, which desktops fill in. What it does not say comes from the account's entry in
/// passwd and from $EMAIL; it throws when none of these knows the user.
class ZELKSystemAddressBook : public ZELKAddressBook
{
public:
    explicit ZELKSystemAddressBook(const QDBusConnection &systemBus);

    /// The full name is the first name: nobody can tell where it is to be divided. Blocks for at most a
    /// second, and only the first time: what the service said, or that it said nothing, is remembered.
    ZELKAddressCard me() const override;

private:
    std::optional<ZELKAddressCard> askAccounts() const;

    QDBusConnection m_bus;
    mutable bool m_wasAsked = false;
    mutable std::optional<ZELKAddressCard> m_account;
};
