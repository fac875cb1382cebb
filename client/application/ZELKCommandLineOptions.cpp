#include "ZELKCommandLineOptions.h"

#include "ZELKApplicationSettings.h"
#include "ZELKCommandLineText.h"
#include "ZELKCommandLineWords.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKSampleLog.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QRegularExpression>

namespace {

namespace Words = ZELKCommandLineWords;
using Options = ZELKCommandLineOptions;
using Command = Options::Command;
using Format = ZELKEntryWriter::Format;
using AgentAction = ZELKAgentRequest::Action;

constexpr int mostEntries = 1'000'000;

/// What is wrong with the arguments.
struct Complaint
{
    QString text;
};

/// `key` is one of the command line's texts.
[[noreturn]] void complain(const char *key, const QString &argument = {}, const QString &second = {})
{
    throw Complaint{ZELKFormat(ZELKCommandLineText(key), {argument, second})};
}

class Reader
{
public:
    explicit Reader(const QStringList &arguments);
    Options::Parsed read();

private:
    void takeCommand();
    QStringList takeImport(QStringList words);
    QStringList takeBareRange(QStringList words);
    QStringList takeAgentAction(QStringList words);
    void takeAgent();
    void checkBelonging() const;
    void takeGlobals();
    void takeRange(const QString &range);
    void takeFormat(const QString &format);
    void takeList();
    void takeSnapshot();
    void takeExport();
    void takePrint();
    std::optional<QString> value(const char *name) const;
    std::optional<Options::Moment> moment(const char *name) const;

    QCommandLineParser m_parser;
    QStringList m_arguments;
    Options m_options;
    bool m_hasRange = false;
};

Reader::Reader(const QStringList &arguments)
    : m_arguments(arguments)
{
    m_parser.addOption(QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")}));
    m_parser.addOption(QCommandLineOption(QStringList{QStringLiteral("v"), QStringLiteral("version")}));
    for (const Words::Option &option : Words::options())
        m_parser.addOption(
            QCommandLineOption(QString::fromLatin1(option.name), {}, QString::fromLatin1(option.value)));
}

Options::Parsed Reader::read()
{
    const bool isSound = m_parser.parse(m_arguments);
    if (m_parser.isSet(QStringLiteral("help")))
        return {Options::Outcome::Help, {}, {}};
    if (m_parser.isSet(QStringLiteral("version")))
        return {Options::Outcome::Version, {}, {}};
    if (const QStringList unknown = m_parser.unknownOptionNames(); !unknown.isEmpty())
        complain("Unknown option '%@'.", unknown.constFirst());
    if (!isSound)
        complain("The options are not in order: %@", m_parser.errorText());
    takeCommand();
    takeGlobals();
    takeList();
    takeExport();
    takePrint();
    takeSnapshot();
    takeAgent();
    return {Options::Outcome::Run, {}, m_options};
}

void Reader::takeCommand()
{
    QStringList words = m_parser.positionalArguments();
    if (!words.isEmpty()) {
        const QString name = words.takeFirst();
        if (!Words::commands().contains(name))
            complain("There is no command \"%@\".", name);
        m_options.command = Words::commands().value(name);
    }
    if (m_options.command == Command::Import)
        words = takeImport(words);
    if (m_options.command == Command::Agent)
        words = takeAgentAction(words);
    if (m_options.command == Command::Stats || m_options.command == Command::Export ||
        m_options.command == Command::Print)
        words = takeBareRange(words);
    if (!words.isEmpty())
        complain("Unexpected argument \"%@\".", words.constFirst());
    checkBelonging();
}

QStringList Reader::takeImport(QStringList words)
{
    if (words.isEmpty())
        complain("import needs a FILE, or - for standard input.");
    m_options.file = words.takeFirst();
    if (m_options.file.isEmpty())
        complain("The FILE to import has no name.");
    return words;
}

/// A range may stand without its option.
QStringList Reader::takeBareRange(QStringList words)
{
    if (!words.isEmpty())
        takeRange(words.takeFirst());
    return words;
}

QStringList Reader::takeAgentAction(QStringList words)
{
    const QString name = words.isEmpty() ? QString() : words.takeFirst();
    if (!Words::agentActions().contains(name))
        complain("agent needs to be told what to do: status, install, remove or update.");
    m_options.agent.action = Words::agentActions().value(name);
    return words;
}

void Reader::checkBelonging() const
{
    const bool orPicture = m_parser.isSet(QStringLiteral("or-picture"));
    if (orPicture && m_options.command != Command::Window)
        complain("--or-picture stands in for the window: it does not go together with a command.");
    // What is told of the agent has formats; what is done to it has none.
    const bool isAgentChanged =
        m_options.command == Command::Agent && m_options.agent.action != AgentAction::Status;
    for (const Words::Option &option : Words::options()) {
        const QString name = QString::fromLatin1(option.name);
        if (!m_parser.isSet(name) || (orPicture && name == QLatin1String("count")))
            continue;
        if (!option.goesWith(m_options.command) || (isAgentChanged && name == QLatin1String("format")))
            complain("--%@ belongs to the command %@.", name, Words::commands().key(option.command));
    }
}

std::optional<QString> Reader::value(const char *name) const
{
    const QString option = QString::fromLatin1(name);
    if (!m_parser.isSet(option))
        return std::nullopt;
    const QString value = m_parser.value(option);
    if (value.isEmpty())
        complain("--%@ needs a value.", option);
    return value;
}

void Reader::takeGlobals()
{
    m_options.databaseFile = value("database").value_or(QString());
    m_options.profile = value("profile").value_or(QString());
    m_options.isSample = m_parser.isSet(QStringLiteral("sample"));
    if (m_options.isSample && (!m_options.databaseFile.isEmpty() || !m_options.profile.isEmpty()))
        complain("--sample has a log of its own: it does not take --database or --profile.");
    if (m_options.isSample)
        m_options.profile = ZELKSampleLog::profile();
    m_options.startsAgent = m_parser.isSet(QStringLiteral("start-agent"));
    if (!m_options.profile.isEmpty() && !ZELKApplicationSettings::isProfileName(m_options.profile))
        complain("\"%@\" cannot name a profile: letters, digits, \".\", \"_\" and \"-\" can.",
                 m_options.profile);
    if (m_options.startsAgent && !m_options.profile.isEmpty())
        complain("A profile has no agent: --start-agent and --profile do not go together.");
    if (m_options.startsAgent && m_options.command == Command::Import)
        complain("import has nothing to do with the agent: it does not take --start-agent.");
}

std::optional<Options::Moment> Reader::moment(const char *name) const
{
    const std::optional<QString> text = value(name);
    if (!text)
        return std::nullopt;
    const std::optional<Options::Moment> moment = Options::Moment::parse(*text);
    if (!moment)
        complain("\"%@\" is no date: YYYY-MM-DD, YYYY-MM-DDTHH:MM or YYYY-MM-DDTHH:MM:SS is.", *text);
    return moment;
}

void Reader::takeRange(const QString &range)
{
    if (m_hasRange)
        complain("Unexpected argument \"%@\".", range);
    if (!Words::rangeTags().contains(range))
        complain("There is no range \"%@\".", range);
    m_options.rangeTag = Words::rangeTags().value(range);
    m_hasRange = true;
}

void Reader::takeFormat(const QString &format)
{
    const bool isStats = m_options.command == Command::Stats;
    m_options.statsAsJson = isStats && format == QLatin1String("json");
    if (isStats ? !m_options.statsAsJson && format != QLatin1String("text")
                : !Words::formats().contains(format))
        complain("There is no format \"%@\".", format);
    if (!isStats)
        m_options.format = Words::formats().value(format);
}

void Reader::takeList()
{
    if (const auto range = value("range"))
        takeRange(*range);
    m_options.from = moment("from");
    m_options.to = moment("to");
    if ((m_options.from || m_options.to) && m_hasRange)
        complain("--range does not go together with --from and --to.");
    if (m_options.from && m_options.to && !(m_options.from->begin() < m_options.to->end()))
        complain("--from lies after --to.");
    const auto format = value("format");
    if (format && m_options.command != Command::Export) // which has formats of its own
        takeFormat(*format);
}

void Reader::takeExport()
{
    if (m_options.command != Command::Export)
        return;
    const QString complaint =
        m_options.exportRequest.take({value("format"), value("output"), value("width"), value("height"),
                                      m_hasRange || m_options.from || m_options.to});
    if (!complaint.isEmpty())
        throw Complaint{complaint};
}

void Reader::takePrint()
{
    if (m_options.command != Command::Print)
        return;
    m_options.printRequest = {value("output").value_or(QString()), value("paper").value_or(QString()),
                              m_parser.isSet(QStringLiteral("landscape"))};
    if (const QString complaint = m_options.printRequest.complaint(); !complaint.isEmpty())
        throw Complaint{complaint};
}

void Reader::takeSnapshot()
{
    m_options.picture = value("picture").value_or(QString());
    m_options.orPicture = value("or-picture").value_or(QString());
    if (const auto count = value("count")) {
        bool isNumber = false;
        m_options.count = count->toInt(&isNumber);
        if (!isNumber || m_options.count < 1 || m_options.count > mostEntries)
            complain("--count needs a number from 1 to 1000000, not \"%@\".", *count);
    }
}

void Reader::takeAgent()
{
    if (m_options.command != Command::Agent)
        return;
    if (m_options.startsAgent || !m_options.profile.isEmpty() || !m_options.databaseFile.isEmpty())
        complain("agent does not take --start-agent, --profile or --database.");
    const bool isInstall = m_options.agent.action == AgentAction::Install;
    const std::optional<QString> form = value("as");
    if (isInstall != form.has_value() || (form && !Words::agentForms().contains(*form)))
        complain("agent install, and nothing else, needs --as system, --as user or --as session.");
    if (isInstall)
        m_options.agent.form = Words::agentForms().value(*form);
    if (m_options.format == Format::Tsv)
        complain("agent status has the formats table and json.");
    m_options.agent.asJson = m_options.format == Format::Json;
}

ZELKDate localDate(const QDateTime &moment)
{
    return ZELKDate::fromDateTime(moment);
}

} // namespace

std::optional<Options::Moment> Options::Moment::parse(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        "\\A([0-9]{4}-[0-9]{2}-[0-9]{2})(?:T((?:[01][0-9]|2[0-3]):[0-9]{2}(?::[0-9]{2})?))?\\z"));
    const QRegularExpressionMatch match = form.match(text);
    const Moment moment{QDate::fromString(match.captured(1), Qt::ISODate),
                        match.hasCaptured(2)
                            ? std::optional(QTime::fromString(match.captured(2), Qt::ISODate))
                            : std::nullopt};
    if (!moment.day.isValid() || (moment.time && !moment.time->isValid()))
        return std::nullopt;
    return moment;
}

ZELKDate Options::Moment::begin() const
{
    const QTimeZone zone = ZELKEnvironment::current().zone;
    return localDate(time ? QDateTime(day, *time, zone) : day.startOfDay(zone));
}

ZELKDate Options::Moment::end() const
{
    if (time)
        return begin().addingTimeInterval(1.0);
    return localDate(day.addDays(1).startOfDay(ZELKEnvironment::current().zone));
}

Options::Parsed Options::parse(const QStringList &arguments)
{
    try {
        return Reader(arguments).read();
    } catch (const Complaint &complaint) {
        return {Outcome::Wrong, complaint.text, {}};
    }
}
