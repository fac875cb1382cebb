#include "ZELKAssertion.h"
#include "ZELKClock.h"
#include "ZELKConsole.h"
#include "ZELKNotificationQueue.h"
#include "ZELKWallClockTimer.h"

#include <QSignalSpy>
#include <QtTest>

#include <sys/resource.h>

#include <stdexcept>

namespace {

QStringList lines;

void collect(QtMsgType, const QMessageLogContext &, const QString &text)
{
    lines.append(text);
}

/// Collects console lines for as long as it lives.
class Console
{
public:
    Console()
        : m_before(qInstallMessageHandler(collect))
    {
        lines.clear();
    }
    ~Console()
    {
        qInstallMessageHandler(m_before);
        zelkSetFailureObserver({});
    }

private:
    QtMessageHandler m_before;
};

ZELKDate now()
{
    return ZELKSystemClock().now();
}

/// While it lives, no descriptor can be opened.
class NoDescriptors
{
public:
    NoDescriptors()
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit none{0, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }

private:
    rlimit m_before = {};
};

/// A kernel's timer, or the one that looks at the clock by itself.
std::unique_ptr<ZELKWallClockTimer> makeTimer(bool followsKernel)
{
    if (followsKernel)
        return std::make_unique<ZELKWallClockTimer>();
    const NoDescriptors scope;
    return std::make_unique<ZELKWallClockTimer>();
}

void addTimerRows()
{
    QTest::addColumn<bool>("followsKernel");
    QTest::newRow("kernel") << true;
    QTest::newRow("minutes") << false;
}

} // namespace

class TestDeliveries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void guardReportsAndCarriesOn_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("line");
        QTest::newRow("assertion") << 0 << QStringLiteral("Broken. (client/ZELKThing:33)");
        QTest::newRow("parameter") << 1
                                   << QStringLiteral(
                                          "Invalid parameter not satisfying: aKey (client/ZELKThing)");
        QTest::newRow("standard exception") << 2 << QStringLiteral("standard");
        QTest::newRow("other exception") << 3 << QStringLiteral("An unknown exception was thrown.");
    }

    void guardReportsAndCarriesOn()
    {
        QFETCH(int, kind);
        QFETCH(QString, line);
        const Console console;
        QStringList seen;
        zelkSetFailureObserver([&](const ZELKAssertionFailure &failure) { seen.append(failure.message()); });
        const QString file = QStringLiteral("client/ZELKThing");
        QVERIFY(!zelkGuard([&] {
            if (kind == 0)
                ZELKAssertion::fail(file, 33, QStringLiteral("Broken."));
            if (kind == 1)
                ZELKAssertion::failParameter(file, 0, "aKey");
            if (kind == 2)
                throw std::runtime_error("standard");
            throw 5;
        }));
        QCOMPARE(lines, QStringList(line));
        QCOMPARE(seen.size(), 1);
        QVERIFY(line.startsWith(seen.first()));
    }

    void guardHoldsWhenTheObserverFails()
    {
        const Console console;
        zelkSetFailureObserver([](const ZELKAssertionFailure &) {
            zelkSetFailureObserver({});
            throw std::runtime_error("observer");
        });
        QVERIFY(!zelkGuard([] { throw std::runtime_error("first"); }));
        QVERIFY(zelkGuard([] {}));
    }

    void consoleKeepsOneLine()
    {
        const Console console;
        ZELKConsole::log(QStringLiteral("a\nb\r\t\x1b[31m\u2028 \"é\""));
        QCOMPARE(lines, QStringList(QStringLiteral("a\\nb\\r\\t\\u001b[31m\\u2028 \"é\"")));
        lines.clear();
        ZELKConsole::log(QString(3999, QLatin1Char('x')) + QString::fromUtf8("\xf0\x9f\x98\x80 and more"));
        QCOMPARE(lines.first(), QString(3999, QLatin1Char('x')) + QStringLiteral("…"));
    }

    void queueCoalesces()
    {
        ZELKNotificationQueue queue;
        QSignalSpy spy(&queue, &ZELKNotificationQueue::posted);
        for (int i = 0; i < 100; ++i)
            queue.enqueue(QStringLiteral("one"));
        queue.enqueue(QStringLiteral("two"));
        queue.enqueue(QStringLiteral("taken back"));
        queue.dequeue(QStringLiteral("taken back"));
        QCOMPARE(spy.size(), 0);
        QTRY_COMPARE(spy.size(), 2);
        queue.enqueue(QStringLiteral("one"));
        QTRY_COMPARE(spy.size(), 3);
    }

    void queueTakesAnEnqueueWhileDelivering()
    {
        ZELKNotificationQueue queue;
        int deliveries = 0;
        connect(&queue, &ZELKNotificationQueue::posted, this, [&](const QString &name) {
            if (++deliveries < 3)
                queue.enqueue(name);
        });
        queue.enqueue(QStringLiteral("again"));
        QTRY_COMPARE(deliveries, 3);
    }

    void queueSurvivesAFailingReceiver()
    {
        const Console console;
        ZELKNotificationQueue queue;
        connect(&queue, &ZELKNotificationQueue::posted, this, [] { throw std::runtime_error("receiver"); });
        queue.enqueue(QStringLiteral("one"));
        QTRY_COMPARE(lines, QStringList(QStringLiteral("receiver")));
    }

    void timerFiresOnce_data() { addTimerRows(); }

    void timerFiresOnce()
    {
        QFETCH(bool, followsKernel);
        const auto timer = makeTimer(followsKernel);
        QSignalSpy spy(timer.get(), &ZELKWallClockTimer::fired);
        const ZELKDate due = now().addingTimeInterval(0.02);
        timer->schedule(due);
        QVERIFY(timer->isScheduled());
        QTRY_COMPARE(spy.size(), 1);
        QVERIFY(now() >= due);
        QVERIFY(!timer->isScheduled());
    }

    void timerDeliversOneOfManyMissed_data() { addTimerRows(); }

    void timerDeliversOneOfManyMissed()
    {
        QFETCH(bool, followsKernel);
        const auto timer = makeTimer(followsKernel);
        QSignalSpy spy(timer.get(), &ZELKWallClockTimer::fired);
        const ZELKDate first = now().addingTimeInterval(-100000.5);
        timer->schedule(first, 1000.0);
        QTRY_COMPARE(spy.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(spy.size(), 1);
        QVERIFY(timer->isScheduled());
        QCOMPARE(timer->nextFiring(), first.addingTimeInterval(101000.0));
    }

    void timerRepeats_data() { addTimerRows(); }

    void timerRepeats()
    {
        QFETCH(bool, followsKernel);
        const auto timer = makeTimer(followsKernel);
        QSignalSpy spy(timer.get(), &ZELKWallClockTimer::fired);
        timer->schedule(now(), 0.01);
        QTRY_VERIFY(spy.size() >= 3);
        timer->invalidate();
        QVERIFY(!timer->isScheduled());
        const auto count = spy.size();
        QCoreApplication::processEvents();
        QCOMPARE(spy.size(), count);
    }

    void timerTakesAnyDate_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<bool>("fires");
        QTest::newRow("before 1970") << -3e9 << true;
        QTest::newRow("at 1970 itself") << -ZELKDate::secondsFrom1970 << true;
        QTest::newRow("infinite past") << -qInf() << true;
        QTest::newRow("infinite future") << qInf() << false;
        QTest::newRow("not a number") << qQNaN() << false;
    }

    void timerTakesAnyDate()
    {
        QFETCH(double, seconds);
        QFETCH(bool, fires);
        ZELKWallClockTimer timer;
        QSignalSpy spy(&timer, &ZELKWallClockTimer::fired);
        timer.schedule(ZELKDate(seconds), seconds);
        if (fires)
            QTRY_COMPARE(spy.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(spy.size(), fires ? 1 : 0);
    }

    void timerObeysItsReceiver_data() { addTimerRows(); }

    void timerObeysItsReceiver()
    {
        QFETCH(bool, followsKernel);
        auto timer = makeTimer(followsKernel);
        int firings = 0;
        connect(timer.get(), &ZELKWallClockTimer::fired, this, [&] {
            if (++firings == 1)
                timer->schedule(now());
            else
                timer.reset();
        });
        timer->schedule(now(), 0.001);
        QTRY_VERIFY(!timer);
        QCOMPARE(firings, 2);
    }
};

QTEST_GUILESS_MAIN(TestDeliveries)
#include "tst_deliveries.moc"
