#pragma once

#include "ZELKAuthorizationForm.h"

#include <QDBusConnection>
#include <QObject>
#include <QSet>

#include <functional>

/// Finds out whether somebody on the bus may do what it asks for. Asks the bus who the caller is, compares
/// that with the form the caller sent, and asks polkit about that process. Nothing blocks.
class ZELKAuthorizationCheck : public QObject
{
    Q_OBJECT

public:
    /// What the bus and polkit may take each.
    static constexpr int usualTimeout = 1500;

    explicit ZELKAuthorizationCheck(const QDBusConnection &bus, int timeoutMilliseconds = usualTimeout,
                                    const QString &procFolder = QStringLiteral("/proc"),
                                    QObject *parent = nullptr);

    /// `problem` is empty when the caller may, otherwise it says why not.
    using Handler = std::function<void(const QString &problem)>;
    /// `caller` is the caller's unique name, `form` the external form. With `mayAsk` polkit may ask the user,
    /// who then has as long as the bus gives the call. `done` is called once, later, unless this object is
    /// destroyed before. A form is good for one check that succeeds. The administrator may do everything.
    void check(const QByteArray &form, const QString &caller, const QString &action, bool mayAsk,
               const Handler &done);

private:
    struct Request;
    void compare(const Request &request, const QVariantMap &credentials);
    void askPolkit(const Request &request);
    void accept(const Request &request);

    QDBusConnection m_bus;
    int m_timeout;
    QString m_procFolder;
    QSet<QByteArray> m_usedNonces;
};
