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
    /// The bus lets a connection wait for few answers at once (128), and the agent has others to wait for.
    static constexpr int mostAtOnce = 32;

    struct Surroundings
    {
        int timeoutMilliseconds = 4500; ///< what bus and polkit may take together, unless polkit asks
        QString procFolder = QStringLiteral("/proc");
        uint administrator = 0; ///< the user who may do everything
    };

    ZELKAuthorizationCheck(const QDBusConnection &bus, const Surroundings &surroundings,
                           QObject *parent = nullptr);

    using Handler = std::function<void(const QString &problem)>;
    /// `caller` is the caller's unique name, `form` the external form. With `mayAsk` polkit may ask the user,
    /// who then has some minutes. `done` is called once, later, unless this object is destroyed before; its
    /// `problem` is empty when the caller may, otherwise it says why not, as when too many checks are under
    /// way. A form is good for one check that succeeds.
    void check(const QByteArray &form, const QString &caller, const QString &action, bool mayAsk,
               const Handler &done);

private:
    struct Request;
    void compare(const Request &request, const QVariantMap &credentials);
    void askPolkit(const Request &request);
    void accept(const Request &request);

    QDBusConnection m_bus;
    Surroundings m_surroundings;
    QSet<QByteArray> m_usedNonces;
    int m_underWay = 0;
};
