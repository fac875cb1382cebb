#include "AgentBed.h"
#include "Rows.h"
#include "ZELKCommandLineOptions.h"
#include "ZELKSessionWorkspace.h"
#include "ZELKTextOutput.h"

#include <QProcess>
#include <QTemporaryFile>
#include <QTimer>

namespace {

using State = ZELKAgentController::State;
using SetUp = void (*)(AgentBed &);

void nothing(AgentBed &) {}
void userJob(AgentBed &bed)
{
    bed.services->jobs[1].insert(AgentBed::agentName());
    bed.letServiceAnswer(true);
}
void oldUserJob(AgentBed &bed)
{
    userJob(bed);
    bed.lookup->version = u"0.0.1"_s;
}
void silentUserJob(AgentBed &bed)
{
    bed.services->jobs[1].insert(AgentBed::agentName());
}
void muteUserJob(AgentBed &bed)
{
    userJob(bed);
    bed.lookup->version.reset();
}
void stuckUserJob(AgentBed &bed)
{
    userJob(bed);
    bed.services->removalProblem = u"it clings"_s;
}
void session(AgentBed &bed)
{
    bed.letAgentRun(true);
    QTimer::singleShot(0, &bed.later, [&bed] { bed.letServiceAnswer(false); });
}
void strayService(AgentBed &bed)
{
    bed.letServiceAnswer(true);
}
void noSystemd(AgentBed &bed)
{
    bed.services->hasSystem = bed.services->hasUser = false;
}
void answersLater(AgentBed &bed)
{
    QTimer::singleShot(0, &bed.later, [&bed] { bed.letServiceAnswer(true); });
}
void endsAgain(AgentBed &bed)
{
    QTimer::singleShot(0, &bed.later, [&bed] { bed.workspace->instances.clear(); });
}

struct Outcome
{
    bool succeeded = false;
    QString output;
    QString complaint;
};

/// What the arguments ask for, in the test's world; a limit of no time for what never settles.
Outcome runIn(AgentBed &bed, const QString &arguments, bool settles)
{
    Outcome outcome;
    const auto parsed =
        ZELKCommandLineOptions::parse((u"lullwatch agent "_s + arguments).split(u' ', Qt::SkipEmptyParts));
    if (parsed.outcome != ZELKCommandLineOptions::Outcome::Run)
        return {false, u"wrong"_s, parsed.complaint};
    QTemporaryFile file;
    if (!file.open())
        return {};
    ZELKTextOutput output(file.handle());
    ZELKAgentController agent(bed.world.ports);
    ZELKAgentCommand command(
        agent, output, [&](const QString &words) { outcome.complaint += words; }, settles ? 30 : 0);
    outcome.succeeded = command.run(parsed.options.agent);
    output.flush();
    file.seek(0);
    outcome.output = QString::fromUtf8(file.readAll());
    return outcome;
}

class AgentCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commands_data()
    {
        const Rows<SetUp, QString, bool, QString, QString> row; // arguments, success, output, complaint
        const QString user = u"Recording for this user\n"_s;
        const QString inSession = u"Recording in this session\n"_s;
        const QString gone = u"Not installed\n"_s;
        row("status of none", nothing, "status", false,
            "State:    Not installed\nVersion:  unknown\nAnswers:  no\n");
        row("status of silent", silentUserJob, "status", false,
            "State:    Recording agent not working properly\nVersion:  unknown\nAnswers:  no\n");
        row("status of stray", strayService, "status --format json", false,
            "{\"state\": 6, \"localisedState\": \"Recording agent not working properly\", "
            "\"version\": \"VERSION\", \"answers\": true, \"canUpdate\": false}\n");
        row("status of mute", muteUserJob, "status", false,
            "State:    Recording for this user\nVersion:  unknown\nAnswers:  no\n"
            "\"lullwatch agent update\" replaces it by the agent of this application.\n");
        row("status of old", oldUserJob, "status", true,
            "State:    Recording for this user\nVersion:  0.0.1\nAnswers:  yes\n"
            "\"lullwatch agent update\" replaces it by the agent of this application.\n");
        row("install user", nothing, "install --as user", true, user);
        row("install again", userJob, "install --as user", true, user);
        row("install over", userJob, "install --as session", false, "",
            "The recording agent is there already (Recording for this user). \"lullwatch agent remove\" "
            "removes it.");
        row("install session", answersLater, "install --as session", true, inSession);
        row("ends again", endsAgain, "install --as session", false, "",
            "The recording agent was started, but has ended again.");
        row("never answers", nothing, "install --as session", false, "",
            "The recording agent did not follow within 0 seconds (Recording agent not working properly).");
        row("user, no systemd", noSystemd, "install --as user", false, "",
            "No systemd runs in this session, so the recording agent cannot be installed for you. "
            "\"--as session\" does without systemd.");
        row("system, no right", nothing, "install --as system", false, "",
            "The recording agent could not be installed for all users, because you were not given the right "
            "to do so. (no password)");
        row("remove none", nothing, "remove", true, gone);
        row("remove user", userJob, "remove", true, gone);
        row("remove session", session, "remove", true, gone);
        row("remove remains", silentUserJob, "remove", true, gone);
        row("remove stray", strayService, "remove", false, "",
            "Something answers for the recording agent, but it was not started from this session; whoever "
            "started it can end it.");
        row("remove stuck", stuckUserJob, "remove", false, "",
            "The recording agent’s files were deleted, but it could not be stopped. (it clings)");
        row("update none", nothing, "update", false, "",
            "There is no recording agent to update (Not installed).");
        row("update own", userJob, "update", true,
            "The recording agent is this application's own already.\n");
        row("update old", oldUserJob, "update", true, user);
        for (const char *arguments : {"", "nonsense", "status more", "status --as user", "install",
                                      "install --as nobody", "status --format tsv", "remove --format json",
                                      "status --profile p", "status --start-agent", "--database x remove"})
            row(QByteArray("wrong: ").append(arguments), nothing, arguments, false, "wrong", "*");
    }
    void commands()
    {
        const auto [setUp, arguments, succeeds, output, complaint] =
            Rows<SetUp, QString, bool, QString, QString>::fetch();
        AgentBed bed;
        setUp(bed);
        const bool settles = !complaint.contains("did not follow"_L1);
        const Outcome outcome = runIn(bed, arguments, settles);
        QVERIFY2(outcome.succeeded == succeeds, qPrintable(outcome.complaint));
        QCOMPARE(outcome.output, QString(output).replace(u"VERSION"_s, AgentBed::version()));
        if (complaint == u"*"_s)
            QVERIFY(!outcome.complaint.isEmpty());
        else
            QCOMPARE(outcome.complaint, complaint);
    }

    /// The program itself with the agent of the build, on a bus of its own and without systemd.
    void program()
    {
        const ZELKEnvironmentScope scope(applicationEnvironment());
        if (!ZELKSessionWorkspace().runningApplicationsWithBundleIdentifier(AgentBed::agentName()).empty())
            QSKIP("an agent of this user runs already; where it belongs to cannot be told");
        const std::pair<QString, int> steps[] = {
            {u"status"_s, 1}, {u"install --as user"_s, 1}, {u"install --as session"_s, 0},
            {u"status"_s, 0}, {u"remove now"_s, 2},        {u"remove"_s, 0},
            {u"status"_s, 1}};
        for (const auto &[arguments, status] : steps)
            QCOMPARE(QProcess::execute(QStringLiteral(LULLWATCH), (u"agent "_s + arguments).split(u' ')),
                     status);
    }
};

} // namespace

QTEST_GUILESS_MAIN(AgentCommandTest)

#include "tst_agent_command.moc"
