// Bundles and their texts, user defaults, and what is delivered: failures, console lines, notifications,
// timers.
#include "ConsoleLines.h"
#include "PropertyLists.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKClock.h"
#include "ZELKConsole.h"
#include "ZELKDate.h"
#include "ZELKNotificationQueue.h"
#include "ZELKStringTables.h"
#include "ZELKUserDefaults.h"
#include "ZELKWallClockTimer.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <stdexcept>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

ZELKDate now()
{
    return ZELKSystemClock().now();
}

/// A kernel's timer, or the one that looks at the clock by itself where no descriptor can be opened.
std::unique_ptr<ZELKWallClockTimer> makeTimer(bool followsKernel)
{
    rlimit before = {};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    if (!followsKernel)
        setrlimit(RLIMIT_NOFILE, &none);
    auto timer = std::make_unique<ZELKWallClockTimer>();
    setrlimit(RLIMIT_NOFILE, &before);
    return timer;
}

} // namespace

class TestServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsInfo()
    {
        const QTemporaryDir folder;
        writeList(folder.filePath(u"Info.plist"_s), {{u"CFBundleExecutable"_s, u"../../bin/thing"_s}});
        writeFile(folder.filePath(u"agent.plist"_s), "x");

        const ZELKBundle bundle(folder.path() + u"/./"_s);
        QCOMPARE(bundle.path(), folder.path());
        QCOMPARE(bundle.executablePath(), QDir::cleanPath(folder.path() + u"/../../bin/thing"_s));
        QCOMPARE(bundle.pathForResource(u"agent"_s, u"plist"_s), folder.filePath(u"agent.plist"_s));
        QCOMPARE(bundle.pathForResource(u"agent.plist"_s, {}), folder.filePath(u"agent.plist"_s));
        QCOMPARE(bundle.pathForResource(u"agent"_s, u"rtf"_s), QString());
    }

    void isInvalidWithoutAGoodInfo()
    {
        const QTemporaryDir folder;
        QVERIFY(!ZELKBundle(folder.path()).isValid());
        for (const char *bytes : {"", "<plist><dict><key>a</key>", "<plist><array/></plist>"}) {
            writeFile(folder.filePath(u"Info.plist"_s), bytes);
            const ZELKBundle bundle(folder.path());
            QVERIFY(!bundle.isValid() && bundle.executablePath().isEmpty());
        }
    }

    void findsTexts_data()
    {
        const Rows<QString, QString, QString, QString> row;
        const QString power = u"org.example.power"_s;
        row("language", "de", "Monitor", power, "Strom");
        row("country falls back", "de_AT", "Monitor", power, "Strom");
        row("key falls back to English", "de", "Monitor", "org.example.lid", "Lid");
        row("table is the context", "en", "General", power, "Something else");
        row("unknown table", "en", "Nowhere", power, QString());
    }
    void findsTexts()
    {
        const auto [language, table, key, text] = Rows<QString, QString, QString, QString>::fetch();
        const ZELKStringTables tables(QStringLiteral(ZELK_TEST_TABLES), language);
        QCOMPARE(tables.lookUp(table, key), text);
        QCOMPARE(tables.lookUp(table, key).isNull(), text.isNull());
    }

    void mainBundleCanBeChosen()
    {
        qputenv("ZELK_MAIN_BUNDLE", "/somewhere/else");
        QCOMPARE(ZELKBundle::mainBundlePath(u"/usr/bin"_s), u"/somewhere/else"_s);
        qunsetenv("ZELK_MAIN_BUNDLE");
        QCOMPARE(ZELKBundle::mainBundlePath(u"/usr/bin"_s), u"/usr/share/lullwatch"_s);
    }

    void init() { m_path = m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction())); }

    void survivesTheFile_data()
    {
        const Rows<QVariant, double, bool> row;
        row("true", true, 1.0, true);
        row("real", 0.1, 0.1, true);
        row("text", u"a, \"b\"; é = %1\n"_s, 0.0, false);
        row("bytes", QByteArray("\x00\xff@\n", 4), 0.0, false);
        row("list", QVariantList{1, u"two"_s}, 0.0, false);
    }
    void survivesTheFile()
    {
        const auto [value, number, boolean] = Rows<QVariant, double, bool>::fetch();
        const QString key = u"ZELKThing.duration."_s + QString::fromLatin1(QTest::currentDataTag());
        ZELKUserDefaults(m_path).setValue(key, value);
        const ZELKUserDefaults again(m_path);
        QCOMPARE(again.doubleForKey(key), number);
        QCOMPARE(again.boolForKey(key), boolean);
        if (value.metaType() == QMetaType::fromType<QString>() || value.typeId() >= QMetaType::QVariantList)
            QCOMPARE(again.value(key), value);
    }

    void tellsOfEffectiveChanges()
    {
        const QString key = u"k"_s;
        ZELKUserDefaults(m_path).setValue(key, true);
        ZELKUserDefaults defaults(m_path);
        QSignalSpy spy(&defaults, &ZELKUserDefaults::valueChanged);
        defaults.setValue(key, true); // a text in the file
        defaults.registerDefaults({{key, false}});
        QCOMPARE(spy.size(), 0);
        defaults.setValue(key, QVariant());
        QCOMPARE(spy.takeFirst().at(1).toBool(), false);
        defaults.setValue(key, false);
        defaults.setValue(key, QVariant());
        defaults.setValue(u"other"_s, QVariant());
        QCOMPARE(spy.size(), 0);
        defaults.registerDefaults({{u"new"_s, 5}});
        QCOMPARE(spy.size(), 1);
        QVERIFY(defaults.value(key).isValid() && !defaults.value(u"other"_s).isValid());
        for (const QVariant &six : {QVariant(6.0), QVariant(6)}) {
            defaults.setValue(u"new"_s, six);
            QCOMPARE(spy.size(), 2);
            QCOMPARE(defaults.integerForKey(u"new"_s), 6);
        }
    }

    void refusesWhatAFileCannotKeep()
    {
        ZELKUserDefaults defaults(m_path);
        QVERIFY(!raised([&] { defaults.setValue(u"k"_s, QVariant::fromValue(ZELKDate())); }).isEmpty());
        QVERIFY(!defaults.value(u"k"_s).isValid());
    }

    void guardReportsAndCarriesOn()
    {
        QStringList seen;
        zelkSetFailureObserver([&](const ZELKAssertionFailure &failure) { seen.append(failure.message()); });
        const QString file = u"client/ZELKThing"_s;
        const std::pair<std::function<void()>, QString> failures[] = {
            {[&] { ZELKAssertion::fail(file, 33, u"Broken."_s); }, u"Broken. (client/ZELKThing:33)"_s},
            {[&] { ZELKAssertion::failParameter(file, 0, "aKey"); },
             u"Invalid parameter not satisfying: aKey (client/ZELKThing)"_s},
            {[] { throw std::runtime_error("standard"); }, u"standard"_s},
            {[] { throw 5; }, u"An unknown exception was thrown."_s}};
        for (const auto &[failure, line] : failures) {
            const ConsoleLines console;
            QVERIFY(!zelkGuard(failure));
            QCOMPARE(console.lines(), QStringList(line));
            QVERIFY(line.startsWith(seen.takeFirst()));
            QVERIFY(seen.isEmpty());
        }

        const ConsoleLines console;
        zelkSetFailureObserver([](const ZELKAssertionFailure &) {
            zelkSetFailureObserver({});
            throw std::runtime_error("observer");
        });
        QVERIFY(!zelkGuard([] { throw std::runtime_error("first"); }));
        QVERIFY(zelkGuard([] {}));
    }

    void consoleKeepsOneLine()
    {
        const ConsoleLines console;
        ZELKConsole::log(u"a\nb\r\t\x1b[31m\u2028 \"é\""_s);
        ZELKConsole::log(QString(3999, u'x') + u"😀 and more"_s);
        QCOMPARE(console.lines(),
                 QStringList({u"a\\nb\\r\\t\\u001b[31m\\u2028 \"é\""_s, QString(3999, u'x') + u"…"_s}));
    }

    void queueCoalesces()
    {
        ZELKNotificationQueue queue;
        const QSignalSpy spy(&queue, &ZELKNotificationQueue::posted);
        for (int i = 0; i < 100; ++i)
            queue.enqueue(u"one"_s);
        queue.enqueue(u"two"_s);
        queue.enqueue(u"taken back"_s);
        queue.dequeue(u"taken back"_s);
        QCOMPARE(spy.size(), 0);
        QTRY_COMPARE(spy.size(), 2);
        queue.enqueue(u"one"_s);
        QTRY_COMPARE(spy.size(), 3);
    }

    /// One that enqueues while it is delivered to, and fails.
    void queueSurvivesItsReceiver()
    {
        const ConsoleLines console;
        ZELKNotificationQueue queue;
        int deliveries = 0;
        connect(&queue, &ZELKNotificationQueue::posted, this, [&](const QString &name) {
            if (++deliveries < 3)
                queue.enqueue(name);
            throw std::runtime_error("receiver");
        });
        queue.enqueue(u"again"_s);
        QTRY_COMPARE(console.lines(), QStringList(3, u"receiver"_s));
    }

    void timerFires_data()
    {
        const Rows<bool> row;
        row("kernel", true);
        row("minutes", false);
    }
    void timerFires()
    {
        auto timer = makeTimer(std::get<0>(Rows<bool>::fetch()));
        QSignalSpy spy(timer.get(), &ZELKWallClockTimer::fired);
        const ZELKDate due = now().addingTimeInterval(0.02);
        timer->schedule(due);
        QVERIFY(timer->isScheduled());
        QTRY_COMPARE(spy.size(), 1);
        QVERIFY(now() >= due);
        QVERIFY(!timer->isScheduled());

        // One of many missed.
        const ZELKDate first = now().addingTimeInterval(-100000.5);
        timer->schedule(first, 1000.0);
        QTRY_COMPARE(spy.size(), 2);
        QCoreApplication::processEvents();
        QCOMPARE(spy.size(), 2);
        QCOMPARE(timer->nextFiring(), first.addingTimeInterval(101000.0));

        timer->schedule(now(), 0.01);
        QTRY_VERIFY(spy.size() >= 5);
        timer->invalidate();
        QVERIFY(!timer->isScheduled());
        spy.clear();
        QCoreApplication::processEvents();
        QCOMPARE(spy.size(), 0);

        // A receiver may schedule it again, and delete it.
        connect(timer.get(), &ZELKWallClockTimer::fired, this, [&] {
            if (spy.size() == 1)
                timer->schedule(now());
            else
                timer.reset();
        });
        timer->schedule(now(), 0.001);
        QTRY_VERIFY(!timer);
        QCOMPARE(spy.size(), 2);
    }

    void timerTakesAnyDate()
    {
        for (const double seconds : {-3e9, -ZELKDate::secondsFrom1970, -qInf(), qInf(), qQNaN()}) {
            ZELKWallClockTimer timer;
            const QSignalSpy spy(&timer, &ZELKWallClockTimer::fired);
            timer.schedule(ZELKDate(seconds), seconds);
            if (seconds < 0)
                QTRY_COMPARE(spy.size(), 1);
            QCoreApplication::processEvents();
            QCOMPARE(spy.size(), seconds < 0 ? 1 : 0);
        }
    }

private:
    QTemporaryDir m_folder;
    QString m_path;
};

QTEST_GUILESS_MAIN(TestServices)
#include "tst_services.moc"
