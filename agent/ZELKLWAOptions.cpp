#include "ZELKLWAOptions.h"

#include <QCommandLineParser>
#include <QStandardPaths>

namespace {

QString placeIn(QStandardPaths::StandardLocation location, const char *name)
{
    return QStringLiteral("%1/org.zelk.lullwatch.agent/%2")
        .arg(QStandardPaths::writableLocation(location), QString::fromLatin1(name));
}

struct Choices
{
    QCommandLineOption database{QStringLiteral("database"),
                                QStringLiteral("The file that events are kept in."), QStringLiteral("FILE")};
    QCommandLineOption wtmp{QStringLiteral("wtmp"), QStringLiteral("The system's accounting file."),
                            QStringLiteral("FILE")};
    QCommandLineOption powerSupply{QStringLiteral("power-supply"),
                                   QStringLiteral("The folder in which the kernel describes power supplies."),
                                   QStringLiteral("DIR")};
    QCommandLineOption system{QStringLiteral("system"),
                              QStringLiteral("Record for all users: serve on the system bus.")};
    QCommandLineOption pastAccounting{QStringLiteral("backfill-wtmp"),
                                      QStringLiteral("Add the boots of an accounting file, and end."),
                                      QStringLiteral("FILE")};
    QCommandLineOption pastJournals{QStringLiteral("backfill-journal"),
                                    QStringLiteral("Add the sleeps of a journal, and end."),
                                    QStringLiteral("FILE-OR-DIR")};
    QCommandLineOption pastCharges{QStringLiteral("backfill-upower"),
                                   QStringLiteral("Add the charges of UPower's history, and end."),
                                   QStringLiteral("DIR")};
};

/// False when the option was given without a name.
bool take(const QCommandLineParser &parser, const QCommandLineOption &option, QString &place)
{
    if (parser.isSet(option))
        place = parser.value(option);
    return !place.isEmpty();
}

bool takeAll(const QCommandLineParser &parser, const QCommandLineOption &option, QStringList &places)
{
    places = parser.values(option);
    return !places.contains(QString());
}

} // namespace

ZELKLWAOptions ZELKLWAOptions::usual(bool forAllUsers)
{
    ZELKLWAOptions options;
    options.forAllUsers = forAllUsers;
    if (forAllUsers) {
        const QString folder = qEnvironmentVariable("STATE_DIRECTORY", QStringLiteral("/var/lib/lullwatch"));
        options.database = folder + QStringLiteral("/events.db");
        options.settings = folder + QStringLiteral("/settings.ini");
        return options;
    }
    options.database = placeIn(QStandardPaths::GenericDataLocation, "events.db");
    options.settings = placeIn(QStandardPaths::GenericConfigLocation, "settings.ini");
    return options;
}

ZELKLWABackfillPlaces ZELKLWAOptions::past() const
{
    ZELKLWABackfillPlaces places;
    if (!readsPastOnly()) {
        places = ZELKLWABackfillPlaces::ofSystem();
        places.wtmp = QStringList{wtmp};
    } else {
        places.wtmp = pastAccounting;
        places.journals = pastJournals;
        places.upower = pastCharges;
    }
    places.powerSupply = powerSupply;
    return places;
}

ZELKLWAOptions::Parsed ZELKLWAOptions::parse(const QStringList &arguments, const QString &version)
{
    const Choices choices;
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Records this computer's power events for Lullwatch."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption tellVersion = parser.addVersionOption();
    parser.addOptions({choices.database, choices.wtmp, choices.powerSupply, choices.system,
                       choices.pastAccounting, choices.pastJournals, choices.pastCharges});

    Parsed parsed;
    if (!parser.parse(arguments)) {
        parsed.outcome = Outcome::Wrong;
        parsed.text = parser.errorText();
    } else if (parser.isSet(help)) {
        parsed.outcome = Outcome::Told;
        parsed.text = parser.helpText();
    } else if (parser.isSet(tellVersion)) {
        parsed.outcome = Outcome::Told;
        parsed.text = QStringLiteral("lullwatch-agent %1\n").arg(version);
    } else if (!parser.positionalArguments().isEmpty()) {
        parsed.outcome = Outcome::Wrong;
        parsed.text =
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst());
    }
    parsed.options = usual(parser.isSet(choices.system));
    const bool named = take(parser, choices.database, parsed.options.database) &&
                       take(parser, choices.wtmp, parsed.options.wtmp) &&
                       take(parser, choices.powerSupply, parsed.options.powerSupply) &&
                       takeAll(parser, choices.pastAccounting, parsed.options.pastAccounting) &&
                       takeAll(parser, choices.pastJournals, parsed.options.pastJournals) &&
                       takeAll(parser, choices.pastCharges, parsed.options.pastCharges);
    if (parsed.outcome == Outcome::Run && !named) {
        parsed.outcome = Outcome::Wrong;
        parsed.text = QStringLiteral("A file or folder needs a name.");
    }
    return parsed;
}
