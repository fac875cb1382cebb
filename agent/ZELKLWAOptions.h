#pragma once

#include "ZELKLWABackfill.h"

#include <QString>
#include <QStringList>

/// Where the agent reads and writes, as the command line says.
struct ZELKLWAOptions
{
    QString database;
    QString settings;
    QString wtmp = QStringLiteral("/var/log/wtmp");
    QString powerSupply = QStringLiteral("/sys/class/power_supply");
    /// Serves everybody on the system bus, not one user on the session bus.
    bool forAllUsers = false;
    /// Past events to be read from files, which is then all the program does.
    QStringList pastAccounting;
    QStringList pastJournals;
    QStringList pastCharges;

    bool readsPastOnly() const
    {
        return !pastAccounting.isEmpty() || !pastJournals.isEmpty() || !pastCharges.isEmpty();
    }

    /// Where the past is read: the files that were named, else the system's.
    ZELKLWABackfillPlaces past() const;

    /// A user's folders ($XDG_DATA_HOME, $XDG_CONFIG_HOME), or the one that the service manager made for all
    /// users' agent ($STATE_DIRECTORY).
    static ZELKLWAOptions usual(bool forAllUsers = false);

    enum class Outcome {
        Run,
        Told,  ///< `text` answers --help or --version
        Wrong, ///< `text` says what is wrong with the arguments
    };
    struct Parsed;
    /// `arguments` begins with the program's name.
    static Parsed parse(const QStringList &arguments, const QString &version);
};

struct ZELKLWAOptions::Parsed
{
    Outcome outcome = Outcome::Run;
    QString text;
    ZELKLWAOptions options;
};
