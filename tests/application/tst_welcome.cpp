// What a window says of a log in which there is nothing yet.
#include "ConsoleLines.h"
#include "Files.h"
#include "Rows.h"
#include "WindowBed.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCWelcomeController.h"
#include "ZELKSampleLog.h"

#include <QApplication>
#include <QPushButton>
#include <QStackedWidget>

namespace {

constexpr char clickStart[] = "ZELKLWCWelcomeControllerLabelClickStart";
constexpr char welcome[] = "ZELKLWCWelcomeControllerLabelWelcome";

struct Labels
{
    explicit Labels(const ZELKLWCEntriesView &view)
        : topLeft(view.labelTopLeft().string())
        , banner(view.labelBanner().string())
    {
    }
    bool areThere() const { return topLeft.contains(u"Start Recording…"_s) && banner.contains("Welcome"_L1); }
    bool areAway() const { return topLeft.isEmpty() && banner.isEmpty(); }

    QString topLeft;
    QString banner;
};

/// Without a window around it.
struct WelcomeBed : ApplicationFixture
{
    ZELKApplicationWiring wiring{settings(), world};
    ZELKLWCEntriesView view;
    ZELKLWCWelcomeController controller{{wiring.agentController(), view, wiring.log()}};
};

enum class Agent { None, Works, Silent, Unknown };

} // namespace

class WelcomeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsSaidBeforeItIsKnown()
    {
        const ApplicationFixture fixture;
        ZELKWindowSession session(fixture.settings(), fixture.world);
        const QMainWindow &window = *session.mainWindow().window();
        const auto &graph = *window.findChild<ZELKLWCEntriesView *>();
        const auto &pages = *window.findChild<QStackedWidget *>(u"pages"_s);
        session.start(false);
        QVERIFY(graph.isVisible() && Labels(graph).areAway());
        QCOMPARE(pages.currentIndex(), 0);
        QCoreApplication::processEvents();
        QVERIFY(graph.isVisible() && Labels(graph).areThere());
        QCOMPARE(pages.currentIndex(), 1);
    }

    void emptyLog_data()
    {
        // agent, readable; graph is there, labels are there, headline, beginning of the hint
        const Rows<Agent, bool, bool, bool, QString, QString> row;
        const char *nothing = "Nothing has been recorded yet";
        row("newcomer", Agent::None, true, true, true, nothing, "Each sleep,");
        row("recording", Agent::Works, true, true, false, "Recording has begun", "What happens");
        row("agent starts or fails", Agent::Silent, true, true, false, nothing, "The list fills");
        row("unreadable", Agent::None, false, false, true, "The recorded entries cannot be read", "The line");
        row("empty profile", Agent::Unknown, true, false, true, "This profile is empty", "Fill it");
    }
    void emptyLog()
    {
        const auto [agent, isReadable, hasGraph, isWelcome, headline, hint] =
            Rows<Agent, bool, bool, bool, QString, QString>::fetch();
        ConsoleLines console;
        ApplicationFixture fixture;
        fixture.letAgentRun(agent == Agent::Works || agent == Agent::Silent);
        if (agent == Agent::Silent)
            fixture.lookup->serviceName.clear();
        if (!isReadable)
            QDir().mkpath(fixture.settings().cacheFile());
        const Session session(fixture, agent == Agent::Unknown ? fixture.profile() : fixture.settings());
        const auto &graph = session.find<ZELKLWCEntriesView>("graph");
        const auto &pages = session.find<QStackedWidget>("pages");
        QCOMPARE(graph.isVisible(), hasGraph);
        QCOMPARE(Labels(graph).areThere(), isWelcome);
        QVERIFY(Labels(graph).areAway() || isWelcome);
        QCOMPARE(pages.currentIndex(), 1);
        QCOMPARE(session.text("emptyLabel"), headline);
        QVERIFY2(session.text("emptyHint").startsWith(hint), qPrintable(session.text("emptyHint")));
        const auto &sample = session.find<QPushButton>("emptyButton");
        QCOMPARE(sample.isVisible() ? sample.text() : QString(),
                 hint == u"Each sleep,"_s ? u"Open Sample Log"_s : QString());
        QCOMPARE(session.find<QWidget>("failure").isVisible(),
                 !isReadable || agent == Agent::Works || agent == Agent::Silent);
        session.add(1);
        QVERIFY(graph.isVisible() && Labels(graph).areAway());
        QCOMPARE(pages.currentIndex(), 0);
    }

    void followsTheAgent()
    {
        ApplicationFixture fixture;
        const Session session(fixture, fixture.settings());
        const auto &graph = session.find<ZELKLWCEntriesView>("graph");
        for (const bool runs : {true, false}) {
            fixture.letAgentRun(runs);
            session.wiring.agentController().updateState();
            QCOMPARE(Labels(graph).areAway(), runs);
            QCOMPARE(Labels(graph).areThere(), !runs);
            QVERIFY(graph.isVisible());
            QCOMPARE(session.text("emptyLabel"),
                     runs ? u"Recording has begun"_s : u"Nothing has been recorded yet"_s);
        }
    }

    void missingLabels_data()
    {
        const Rows<QByteArray, QByteArray, int> row; // there, missing, lines on the console
        row("the first", welcome, clickStart, 1);
        row("the second", clickStart, welcome, 1);
        row("both", "", welcome, 2);
    }
    void missingLabels()
    {
        const auto [there, missing, lines] = Rows<QByteArray, QByteArray, int>::fetch();
        WelcomeBed bed;
        if (!there.isEmpty())
            writeFile(bed.folder.filePath(QString::fromLatin1(there + ".rtf")), "{\\rtf1 Welcome}");
        ZELKEnvironment environment = applicationEnvironment();
        environment.mainBundle = std::make_shared<ZELKBundle>(bed.folder.path());
        const ZELKEnvironmentScope scope(environment);
        const ConsoleLines console;
        bed.controller.applyLogLabels();
        QCOMPARE(console.count("missing"), lines);
        QCOMPARE(console.count("Label '" + missing + "' missing"), 1);
        const Labels shown(bed.view);
        QCOMPARE(shown.topLeft, there == clickStart ? u"Welcome"_s : QString());
        QCOMPARE(shown.banner, there == welcome ? u"Welcome"_s : QString());
    }

    /// A new one takes its place once no window has it open.
    void sampleLogOfAnotherVersion()
    {
        const ApplicationFixture fixture;
        const ZELKApplicationSettings settings{fixture.settings().bundle, ZELKSampleLog::profile(), {}};
        const QString mark = QFileInfo(settings.cacheFile()).path() + u"/imported"_s;
        auto first = std::make_unique<ZELKSampleLog>(settings);
        QVERIFY(!first->prepare());
        const QByteArray present = readFile(mark);
        writeFile(mark, "another");
        QVERIFY(!ZELKSampleLog(settings).prepare());
        QCOMPARE(readFile(mark), QByteArray("another"));
        first.reset();
        QVERIFY(!ZELKSampleLog(settings).prepare());
        QCOMPARE(readFile(mark), present);
    }

    void sizesFollowTheFont()
    {
        const QFont usual = QApplication::font();
        const ApplicationFixture fixture;
        const Session session(fixture, fixture.settings());
        const auto &graph = session.find<ZELKLWCEntriesView>("graph");
        for (const int points : {9, 16}) {
            QFont font = usual;
            font.setPointSize(points);
            QApplication::setFont(font);
            session.window.resize(100 * points, 60 * points);
            QCoreApplication::processEvents();
            for (const ZELKAttributedString &label : {graph.labelTopLeft(), graph.labelBanner()})
                QCOMPARE(label.attributesAt(label.length() - 1).pointSize, double(points));
            QVERIFY(graph.labelBanner().attributesAt(0).pointSize > 1.5 * points);
            session.window.resize(300, 300);
            QVERIFY(!graph.labelBanner().isEmpty() && !graph.labelBanner().string().contains(u'\n'));
        }
        QApplication::setFont(usual);
    }
};

QTEST_MAIN(WelcomeTest)
#include "tst_welcome.moc"
