#include "ConsoleLines.h"
#include "Rows.h"
#include "ZELKAssertion.h"
#include "ZELKClock.h"
#include "ZELKConsole.h"
#include "ZELKNotificationQueue.h"
#include "ZELKWallClockTimer.h"

#include <QSignalSpy>

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

class TestDeliveries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        const auto [followsKernel] = Rows<bool>::fetch();
        auto timer = makeTimer(followsKernel);
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
};

QTEST_GUILESS_MAIN(TestDeliveries)
#include "tst_deliveries.moc"
