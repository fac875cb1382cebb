#pragma once

#include "ZELKDictionary.h"

#include <QMap>
#include <QString>
#include <QStringList>

/// A job's ticket as systemd's unit for a service of the user.
///
/// Keys of the ticket and what they become: "Label" the description; "ProgramArguments" what is executed;
/// "RunAtLoad" being started with the session; "KeepAlive" (a boolean, or a dictionary with "SuccessfulExit"
/// false) being started again; "ThrottleInterval" the pause before that; "ExitTimeOut" the time to end;
/// "MachServices" the bus name that tells when it has started; "EnvironmentVariables", "Nice",
/// "LowPriorityIO" as they say. Other keys mean nothing here.
namespace ZELKUnitFile {

struct Surroundings
{
    /// The only folders that the service may write to. They are made when it starts, should they be missing.
    QStringList writableFolders;
    /// The user's manager can give a service a view of its own of the file system. Where the kernel does not
    /// let users do that, asking for it would keep the service from starting.
    bool hasNamespaces = true;
    /// Variables that the service starts with; those of the ticket go before them.
    QMap<QString, QString> environment = {};
};

QString text(const ZELKDictionary &ticket, const Surroundings &surroundings);

/// A word of a command line or list: in quotes, with nothing in it that systemd would expand.
QString quoted(const QString &word);

/// Whether users may make namespaces, as the kernel's settings in a folder like /proc/sys say.
bool usersHaveNamespaces(const QString &settingsFolder = QStringLiteral("/proc/sys"));

} // namespace ZELKUnitFile
