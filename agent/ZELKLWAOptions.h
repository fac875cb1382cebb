#pragma once

#include <QString>
#include <QStringList>

/// Where the agent reads and writes, as the command line says.
struct ZELKLWAOptions
{
    QString database;
    QString settings;
    QString wtmp = QStringLiteral("/var/log/wtmp");
    QString powerSupply = QStringLiteral("/sys/class/power_supply");

    /// The user's folders ($XDG_DATA_HOME, $XDG_CONFIG_HOME) and the system's.
    static ZELKLWAOptions usual();

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
