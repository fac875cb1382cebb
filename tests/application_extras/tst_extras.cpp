#include "Files.h"
#include "Rows.h"
#include "ZELKApplicationExtras.h"
#include "ZELKBundle.h"
#include "ZELKDesktopEntry.h"
#include "ZELKEnvironment.h"
#include "ZELKPathResolution.h"
#include "ZELKUserDefaults.h"

#include <QAction>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

using Outcome = ZELKPathResolution::Outcome;
using Answer = ZELKUpdateCheck::Answer;

QByteArray link(const QString &target)
{
    return "[Desktop Entry]\nType=Link\nURL=" + target.toUtf8() + '\n';
}

/// A folder of links, and a bundle and a menu in it.
struct Bed
{
    Bed()
    {
        root = QFileInfo(folder.path()).canonicalFilePath();
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.mainBundle = bundle;
        scope.emplace(environment);
        writeFile(executable(), "#!/bin/sh\n");
        QFile::setPermissions(executable(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        writeFile(at("icon.svg"), "<svg/>");
    }
    QString at(const char *path) const { return root + u'/' + QString::fromUtf8(path); }
    QString executable() const { return at("a \"$100%\" folder\\/lullwatch"); }
    ZELKApplicationsMenuOffer::World offer()
    {
        return {ZELKApplicationsMenu({at("user"), {at("system")}}),
                {u"org.example"_s, u"Example"_s, u"Two\nlines"_s, executable(), at("icon.svg")},
                [this](const QStringList &command) {
                    started = command;
                    return canStart;
                },
                [this] { ++quits; }};
    }
    ZELKApplicationExtras extras()
    {
        return ZELKApplicationExtras({*bundle, {}, executable(), run, offer()}, defaults);
    }
    /// Presses a button of the sheet that stands on the window.
    bool press(QMessageBox::ButtonRole role)
    {
        for (QMessageBox *box : window.findChildren<QMessageBox *>())
            for (QAbstractButton *button : box->buttons())
                if (box->isVisible() && box->buttonRole(button) == role) {
                    button->click();
                    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
                    return true;
                }
        return false;
    }

    QTemporaryDir folder;
    QString root;
    std::shared_ptr<const ZELKBundle> bundle =
        std::make_shared<ZELKBundle>(qEnvironmentVariable("ZELK_MAIN_BUNDLE"));
    std::optional<ZELKEnvironmentScope> scope;
    ZELKUserDefaults defaults{folder.filePath(u"defaults.ini"_s)};
    ZELKUpdateCheck::Run run = [](auto, auto, const auto &then) { then(std::nullopt); };
    QWidget window;
    QStringList started;
    bool canStart = true;
    int quits = 0;
};

} // namespace

class ExtrasTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pathsLeadThere_data()
    {
        const Rows<QString, QString, Outcome> row; // path, and where it ends
        row("nothing to follow", "/real/file", "/real/file");
        row("dots and slashes", "/real/./..//real//file/", "/real/file");
        row("link to a folder, relative", "/to-real/file", "/real/file");
        row("link to a link", "/twice/file", "/real/file");
        row("up from where a link leads", "/deep/../file", "/real/file");
        row("desktop link", "/alias.desktop", "/real/file");
        row("desktop link in the middle", "/folder.desktop/file", "/real/file");
        row("desktop entry of a program", "/program.desktop", "/program.desktop");
        row("desktop link to elsewhere", "/web.desktop", "/web.desktop");
        row("missing at the end", "/real/none", "/real/none", Outcome::Missing);
        row("missing in the middle", "/none/file", "/none", Outcome::Missing);
        row("link to nothing", "/broken", "/nowhere", Outcome::Missing);
        row("a file is no folder", "/real/file/more", "/real/file", Outcome::Missing);
        row("loop of one", "/self", "/self", Outcome::Loop);
        row("loop of a link and a desktop link", "/a/file", "", Outcome::Loop);
        row("the same link again is no loop", "/to-real/up/to-real/file", "/real/file");
    }
    void pathsLeadThere()
    {
        const auto [path, end, outcome] = Rows<QString, QString, Outcome>::fetch();
        const Bed bed;
        const auto linkTo = [&bed](const char *name, const QString &target) {
            QVERIFY(QFile::link(target, bed.at(name)));
        };
        writeFile(bed.at("real/file"), "x");
        writeFile(bed.at("real/inner/file"), "x");
        linkTo("to-real", u"real"_s);
        linkTo("twice", bed.at("to-real"));
        linkTo("deep", u"to-real/inner"_s);
        linkTo("real/up", u".."_s);
        linkTo("broken", bed.at("nowhere"));
        linkTo("self", u"self"_s);
        linkTo("a", u"b.desktop"_s);
        writeFile(bed.at("b.desktop"), link(u"file://"_s + bed.at("a")));
        writeFile(bed.at("alias.desktop"), link(u"file://"_s + bed.at("to-real/file")));
        writeFile(bed.at("folder.desktop"), link(u"file://"_s + bed.at("real")));
        writeFile(bed.at("web.desktop"), link(u"https://example.org/"_s));
        writeFile(bed.at("program.desktop"), "[Desktop Entry]\nType=Application\nURL=file:///real\n");

        const auto result = ZELKPathResolution::resolve(bed.root + path);
        QCOMPARE(result.outcome, outcome);
        if (!end.isEmpty())
            QCOMPARE(result.path, bed.root + end);
        QCOMPARE(ZELKPathResolution::resolve(path.sliced(1), bed.root), result);
    }

    void commandsAreTakenApart_data()
    {
        const Rows<QByteArray, QStringList> row;
        row("plain", "lullwatch  --all", QStringList{u"lullwatch"_s, u"--all"_s});
        row("quotes, codes", "\"a b\" %U c%%d \"\" \"e\\\\\"f\"",
            QStringList{u"a b"_s, u"c%d"_s, u""_s, u"e\"f"_s});
        row("open quote", "\"a b");
        const QString strange = u"/x \"$`\\%u/\n\r\\n/ü"_s;
        row("what we write", ZELKDesktopEntry::quoted(strange), QStringList{strange});
    }
    void commandsAreTakenApart()
    {
        const auto [exec, words] = Rows<QByteArray, QStringList>::fetch();
        const auto entry = ZELKDesktopEntry::parse(
            "[Other]\nExec=no\n[Desktop Entry]\n# Exec=no\nExec = " + exec + "\n[Desktop Action]\nExec=no\n");
        QVERIFY(entry);
        QCOMPARE(entry->command(), words);
    }

    void isOfferedToComeIntoTheMenu()
    {
        Bed bed;
        ZELKApplicationExtras extras = bed.extras();
        extras.offerToMoveToApplicationsFolder(bed.window);
        QVERIFY(bed.press(QMessageBox::AcceptRole)); // add
        const auto entry = ZELKDesktopEntry::read(bed.at("user/applications/org.example.desktop"));
        QVERIFY(entry);
        QCOMPARE(entry->value(u"Comment"_s), u"Two\nlines"_s);
        QVERIFY(QFile::exists(bed.at("user/icons/hicolor/scalable/apps/org.example.svg")));
        bed.canStart = false;
        QVERIFY(bed.press(QMessageBox::AcceptRole)); // start again
        QCOMPARE(bed.started, QStringList{bed.executable()});
        QCOMPARE(bed.quits, 0);
        QVERIFY(bed.press(QMessageBox::AcceptRole)); // it could not
        extras.offerToMoveToApplicationsFolder(bed.window);
        QVERIFY(!bed.press(QMessageBox::RejectRole)); // it is there already

        // What the menu starts is another program: a copy of this one that was unpacked elsewhere.
        writeFile(bed.at("user/applications/org.example.desktop"),
                  "[Desktop Entry]\nExec=" + bed.at("icon.svg").toUtf8());
        extras.offerToMoveToApplicationsFolder(bed.window);
        bed.canStart = true;
        QVERIFY(bed.press(QMessageBox::AcceptRole));
        QVERIFY(bed.press(QMessageBox::AcceptRole));
        QCOMPARE(bed.quits, 1);
    }

    void isNotOfferedAgain()
    {
        Bed bed;
        ZELKApplicationExtras extras = bed.extras();
        extras.offerToMoveToApplicationsFolder(bed.window);
        bed.window.findChild<QCheckBox *>()->setChecked(true);
        QVERIFY(bed.press(QMessageBox::RejectRole));
        QVERIFY(bed.defaults.boolForKey(u"moveToApplicationsFolderAlertSuppress"_s));
        QVERIFY(!QFile::exists(bed.at("user")));
        extras.offerToMoveToApplicationsFolder(bed.window);
        QVERIFY(!bed.press(QMessageBox::RejectRole));
    }

    void aFailureIsTold()
    {
        Bed bed;
        writeFile(bed.at("user/applications"), "a file where a folder should be");
        ZELKApplicationExtras extras = bed.extras();
        extras.offerToMoveToApplicationsFolder(bed.window);
        QVERIFY(bed.press(QMessageBox::AcceptRole));
        const auto *told = bed.window.findChild<QMessageBox *>();
        QVERIFY(told && told->isVisible());
        QCOMPARE(told->icon(), QMessageBox::Warning);
    }

    void understandsAnswers()
    {
        using Check = ZELKUpdateCheck;
        const QByteArray policy = "lullwatch:\n  Installed: 1.0-1\n  Candidate: ";
        QVERIFY(Check::answerOfApt(policy + "1.0-1\n") ==
                (Answer{Answer::Kind::Newest, u"1.0-1"_s, u"apt"_s}));
        QVERIFY(Check::answerOfApt(policy + "1.1-1\n") ==
                (Answer{Answer::Kind::Newer, u"1.1-1"_s, u"apt"_s}));
        QVERIFY(Check::answerOfApt("N: Unable to locate\n") == Answer{});
        const QByteArray releases = "<component><releases><release version=\"0.9\"/>"
                                    "<release version=\"0.10\"/></releases></component>";
        const Answer found{Answer::Kind::Newer, u"0.10"_s, u"AppStream"_s};
        QVERIFY(Check::answerOfCatalogue(releases, u"0.9"_s) == found);
        QCOMPARE(Check::answerOfCatalogue(releases, u"0.10"_s).kind, Answer::Kind::Newest);
        QVERIFY(Check::answerOfCatalogue("<a", u"1"_s) == Answer{});
    }

    void asksWhoeverKnows()
    {
        QStringList asked;
        QHash<QString, QByteArray> answers{
            {u"dpkg-query"_s, "lullwatch: /usr/bin/lullwatch\n"},
            {u"apt-cache"_s, "lullwatch:\n  Installed: (none)\n  Candidate: 2\n"}};
        ZELKUpdateCheck check({u"/usr/bin/lullwatch"_s, u"org.example"_s, u"1"_s},
                              [&](const QString &program, const QStringList &arguments, const auto &then) {
                                  asked.append(program + u' ' + arguments.last());
                                  then(answers.contains(program)
                                           ? ZELKUpdateCheck::Output(answers.value(program))
                                           : std::nullopt);
                              });
        QSignalSpy finished(&check, &ZELKUpdateCheck::finished);
        check.start();
        QCOMPARE(asked, (QStringList{u"dpkg-query /usr/bin/lullwatch"_s, u"apt-cache lullwatch"_s,
                                     u"appstreamcli org.example"_s}));
        QCOMPARE(finished.count(), 1);

        // Real programs end, whether they are there or not.
        ZELKUpdateCheck::Output output = QByteArray("untouched");
        ZELKUpdateCheck::programs()(u"/no/such/program"_s, {},
                                    [&output](const auto &told) { output = told; });
        QTRY_VERIFY(!output);
        ZELKUpdateCheck::programs()(u"echo"_s, {u"hello"_s}, [&output](const auto &told) { output = told; });
        QTRY_COMPARE(output.value_or(QByteArray()), "hello\n");
    }

    void theMenuGetsItsItems()
    {
        Bed bed;
        writeFile(
            bed.at("bundle/Info.plist"),
            "<plist version=\"1.0\"><dict><key>ZELKApplicationExtrasItems</key><array><dict><key>title</key>"
            "<string>Website</string><key>url</key><string>https://example.org</string></dict></array></"
            "dict></"
            "plist>");
        const ZELKBundle bundle(bed.at("bundle"));
        ZELKApplicationExtras extras({bundle, {}, bed.executable(), bed.run}, bed.defaults);
        QMenu menu;
        menu.addAction(u"first"_s);
        menu.addSeparator();
        menu.addAction(u"last"_s);
        extras.insertItems(menu, bed.window);
        QStringList texts;
        for (const QAction *action : menu.actions())
            texts.append(action->text());
        QCOMPARE(texts, (QStringList{u"first"_s, {}, u"&Check for Updates…"_s, u"Website"_s, u"last"_s}));
        menu.actions().at(2)->trigger();
        const auto *told = bed.window.findChild<QMessageBox *>();
        QVERIFY(told && told->isVisible());

        ZELKApplicationExtras real = bed.extras();
        real.orderFrontAboutPanel(bed.window);
        const auto *version = bed.window.findChild<QLabel *>(u"version"_s);
        QVERIFY(version->text().contains(bed.bundle->infoDictionary().string(u"CFBundleVersion"_s)));
    }
};

QTEST_MAIN(ExtrasTest)
#include "tst_extras.moc"
