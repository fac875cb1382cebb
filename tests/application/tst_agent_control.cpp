// The agent as it is controlled: by the sheets of the window, and by the command.
#include "AgentBed.h"
#include "Files.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKAgentAlertSheet.h"
#include "ZELKCommandLineOptions.h"
#include "ZELKTextOutput.h"
#include "ZELKWindowSession.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryFile>
#include <QTextDocument>
#include <QTimer>

namespace {

/// A window with the alerts of a controller on it.
struct SheetBed : AgentBed
{
    explicit SheetBed(bool hasSystem = true, bool hasUser = true)
    {
        services->hasSystem = hasSystem;
        services->hasUser = hasUser;
        agent.emplace(world.ports);
        sheet.emplace(window, *agent);
        agent->setAlerts(&*sheet);
        window.show();
    }
    void ask() { agent->startStop(); }
    ZELKAgentAlertDialog *dialog() const { return window.findChild<ZELKAgentAlertDialog *>(); }
    template <typename Type>
    Type *find(const char *name) const
    {
        return dialog()->findChild<Type *>(QString::fromLatin1(name));
    }
    QList<QPushButton *> buttons() const
    {
        return dialog()->findChildren<QPushButton *>(QString(), Qt::FindDirectChildrenOnly);
    }
    QComboBox &popUp() const { return *find<QComboBox>("installAlertLocationButton"); }

    QWidget window;
    std::optional<ZELKAgentController> agent;
    std::optional<ZELKAgentAlertSheet> sheet;
};

using Act = void (*)(const SheetBed &);

QByteArray interface(const char *rootName, const char *content)
{
    return "<ui version=\"4.0\"><class>A</class><widget class=\"QWidget\" name=\"" + QByteArray(rootName) +
           "\">" + content + "</widget></ui>";
}

using SetUp = void (*)(AgentBed &);

const SetUp nothing = [](AgentBed &) {};
const SetUp silentUserJob = [](AgentBed &bed) { bed.services->jobs[1].insert(AgentBed::agentName()); };
const SetUp userJob = [](AgentBed &bed) { bed.letUserJobAnswer(AgentBed::version()); };
const SetUp oldUserJob = [](AgentBed &bed) { bed.letUserJobAnswer(u"0.0.1"_s); };
const SetUp muteUserJob = [](AgentBed &bed) {
    userJob(bed);
    bed.lookup->version.reset();
};
const SetUp stuckUserJob = [](AgentBed &bed) {
    userJob(bed);
    bed.services->removalProblem = u"it clings"_s;
};
const SetUp session = [](AgentBed &bed) {
    bed.letAgentRun(true);
    QTimer::singleShot(0, &bed.later, [&bed] { bed.letServiceAnswer(false); });
};
const SetUp strayService = [](AgentBed &bed) { bed.letServiceAnswer(true); };
const SetUp noSystemd = [](AgentBed &bed) { bed.services->hasSystem = bed.services->hasUser = false; };
const SetUp answersLater = [](AgentBed &bed) {
    QTimer::singleShot(0, &bed.later, [&bed] { bed.letServiceAnswer(true); });
};
const SetUp endsAgain = [](AgentBed &bed) {
    QTimer::singleShot(0, &bed.later, [&bed] { bed.workspace->instances.clear(); });
};

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

} // namespace

class AgentControlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setApplicationDisplayName(u"Lullwatch"_s); }

    void installAlert()
    {
        SheetBed bed;
        bed.ask();
        QVERIFY(bed.dialog() && bed.dialog()->isVisible());
        QCOMPARE(bed.dialog()->windowModality(), Qt::WindowModal);
        QVERIFY(bed.find<QLabel>("informative")->text().startsWith(u"Lullwatch shows "_s));
        QStringList titles;
        for (const QPushButton *button : bed.buttons())
            titles.append(button->text().remove(u'&'));
        titles.removeAll(u"Help"_s); // there is one where there is a guide
        QCOMPARE(titles, QStringList({u"Install"_s, u"Record This Session Only"_s, u"Cancel"_s}));
        const auto meaning = [&] { return bed.find<QLabel>("installAlertMeaningLabel")->text(); };
        const QString forAll = meaning();
        bed.popUp().setCurrentIndex(1);
        QVERIFY(meaning() != forAll && !meaning().startsWith("ZELK"_L1));
        QCOMPARE(bed.popUp().accessibleDescription(), meaning());
        bed.ask(); // stands already
        QCOMPARE(bed.window.findChildren<ZELKAgentAlertDialog *>().size(), 1);
    }

    void returnCodes_data()
    {
        const Rows<int, int, Act> row; // return code, tag
        row("Return, elsewhere", 1000, 2, Act([](const SheetBed &bed) {
                bed.popUp().setCurrentIndex(1);
                QTest::keyClick(bed.dialog(), Qt::Key_Return);
            }));
        row("second", 1001, 1, Act([](const SheetBed &bed) { bed.buttons().at(1)->click(); }));
        row("third", 1002, 1, Act([](const SheetBed &bed) { bed.buttons().at(2)->click(); }));
        row("Escape", 1002, 1,
            Act([](const SheetBed &bed) { QTest::keyClick(bed.dialog(), Qt::Key_Escape); }));
        row("closed", 1002, 1, Act([](const SheetBed &bed) { bed.dialog()->close(); }));
    }
    void returnCodes()
    {
        const auto [code, tag, act] = Rows<int, int, Act>::fetch();
        SheetBed bed;
        const ZELKAgentAlert alert{u"?"_s, {}, {u"A"_s, u"B"_s, u"C"_s}, {}, u"ZELKAgentController"_s};
        QList<std::pair<int, int>> ends;
        bed.sheet->beginSheet(alert, [&](int returnCode, int locationTag) {
            QVERIFY(!bed.dialog()->isVisible());
            ends.append({returnCode, locationTag});
        });
        act(bed);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!bed.dialog());
        QCOMPARE(ends, (QList<std::pair<int, int>>{{code, tag}}));
    }

    void offers_data()
    {
        // system, user; tags offered, tag chosen, what is said
        const Rows<bool, bool, QList<int>, int, QString> row;
        row("both", true, true, QList<int>{1, 2}, 1, "");
        row("no system", false, true, QList<int>{2}, 2, "Installing for all users is not possible");
        row("no user", true, false, QList<int>{1}, 1, "Installing for you only is not possible");
        row("none", false, false, QList<int>{}, 0, "systemd does not run here, so nothing can be installed.");
    }
    void offers()
    {
        const auto [system, user, tags, chosen, words] = Rows<bool, bool, QList<int>, int, QString>::fetch();
        SheetBed bed(system, user);
        bed.ask();
        QList<int> offered;
        const auto *items = qobject_cast<QStandardItemModel *>(bed.popUp().model());
        for (int i = 0; i < items->rowCount(); ++i)
            if (items->item(i)->isEnabled())
                offered.append(bed.popUp().itemData(i).toInt());
        QCOMPARE(offered, tags);
        QCOMPARE(bed.popUp().currentData().toInt(), chosen);
        const auto *absence = bed.find<QLabel>("installAlertAbsenceLabel");
        QCOMPARE(absence->isVisible(), !words.isEmpty());
        QCOMPARE(absence->text().left(words.size()), words);
        QCOMPARE(bed.buttons().at(0)->isEnabled(), !tags.isEmpty());
        QVERIFY(bed.buttons().at(tags.isEmpty() ? 1 : 0)->isDefault());
    }

    void help()
    {
        SheetBed bed;
        const QSignalSpy help(&*bed.sheet, &ZELKAgentAlertSheet::helpRequested);
        bed.sheet->beginSheet({{}, {}, {u"A"_s}, u"updating"_s, {}}, [](int, int) {});
        bed.find<QPushButton>("helpButton")->click();
        QCOMPARE(help.value(0).value(0).toString(), u"updating"_s);
        QVERIFY(bed.dialog()->isVisible());
    }

    void faults_data()
    {
        const Rows<QByteArray, QString> row;
        row("missing", QByteArray(), "ZELKAgentController nib is missing or malformed");
        row("malformed", QByteArray("<ui"), "ZELKAgentController nib is missing or malformed");
        row("no view", interface("other", ""), "ZELKAgentController nib view is not connected");
        row("no choice", interface("installAlertAccessoryView", ""),
            "ZELKAgentController nib choice is not connected");
    }
    void faults()
    {
        const auto [bytes, message] = Rows<QByteArray, QString>::fetch();
        SheetBed bed;
        const QTemporaryDir bundle;
        if (!bytes.isEmpty())
            writeFile(bundle.filePath(u"Alert.ui"_s), bytes);
        ZELKEnvironment environment = applicationEnvironment();
        environment.mainBundle = std::make_shared<ZELKBundle>(bundle.path());
        const ZELKEnvironmentScope scope(environment);
        ZELKAgentAlert alert{{}, {}, {u"A"_s}, {}, u"Alert"_s};
        const auto begin = [&] { bed.sheet->beginSheet(alert, [](int, int) { QFAIL("nothing to end"); }); };
        QCOMPARE(raised(begin), message);
        QVERIFY(!bed.dialog());
        alert.accessoryInterface.clear();
        alert.buttons = {u"A"_s, QString()};
        QCOMPARE(raised(begin), u"ZELKAgentController failed to add '(null)' button"_s);
        QVERIFY(!bed.dialog());
    }

    /// An agent of another version: one offer, and a menu item that needs none.
    void windowUpdates()
    {
        AgentBed bed;
        bed.letUserJobAnswer(u"0.0.1"_s);
        ZELKWindowSession session(bed.settings(), bed.world);
        session.start(false);
        QCoreApplication::processEvents();
        const QMainWindow &window = *session.mainWindow().window();
        auto &agent = session.wiring().agentController();
        const auto *item = window.findChild<QAction *>(u"actionUpdateAgent"_s);
        QVERIFY(item->isEnabled());
        agent.updateState(); // the next turn, instead of a second after launching
        QTRY_VERIFY(window.findChild<ZELKAgentAlertDialog *>());
        answerSheet(window, 1);
        QCOMPARE(agent.updateNotifications(), 0U);
        window.findChild<QAction *>(u"actionUpdateAgent"_s)->trigger();
        QTRY_COMPARE(agent.agentVersion(), AgentBed::version());
        QCOMPARE(agent.state(), int(ZELKAgentController::UserJob));
        QVERIFY(!item->isEnabled());
        QCOMPARE(window.findChild<QLabel *>(u"stateLabel"_s)->toolTip(),
                 Qt::convertFromPlainText(u"Recording agent, version "_s + AgentBed::version()));
        // Its files stay, though the job goes: told all the same.
        Q_EMIT agent.errorPresented(ZELKAgentError::withCode(ZELKAgentError::FilesNotRemoved, u"<b>busy"_s));
        const auto *box = window.findChild<QMessageBox *>();
        QVERIFY(box && box->isVisible() && box->text().contains("files could not be deleted"_L1));
        QCOMPARE(box->windowModality(), Qt::WindowModal); // and nothing waits for it
        QCOMPARE(box->textFormat(), Qt::PlainText);
        QCOMPARE(box->informativeText(), u"<b>busy"_s);
    }

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
        QCOMPARE(complaint == u"*"_s ? complaint : outcome.complaint, complaint);
    }
};

QTEST_MAIN(AgentControlTest)
#include "tst_agent_control.moc"
