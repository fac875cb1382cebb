#include "FakeAgent.h"

#include <QElapsedTimer>

#include <sys/epoll.h>
#include <sys/eventfd.h>

using Deed = std::function<void(FakeAgent &, const QDBusMessage &)>;

namespace {

QByteArray xml(const ZELKDictionary &event)
{
    return ZELKPropertyList::writeXml(QVariant::fromValue(event)).bytes;
}

ZELKDictionary eventWith(const QString &key, const QVariant &value)
{
    ZELKDictionary event = history(1).first();
    event.insert(key, value);
    return event;
}

} // namespace

/// Answers that are late, broken or none.
class StoreStreamsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_agent = std::make_unique<FakeAgent>(); }
    void init()
    {
        m_agent->answer = nullptr;
        m_agent->questions.clear();
    }
    void cleanupTestCase() { m_agent.reset(); }

    /// Wherever the stream ends, nothing of it shows, and the next fetch brings all of it.
    void aBrokenStream()
    {
        const QList<ZELKRawEvent> events = history(6);
        const QByteArray whole = streamOf(serialised(events));
        m_agent->events = events;
        const QStringList complete = dumpOf(events);
        QList<qsizetype> ends;
        qsizetype at = 6;
        for (const QByteArray &event : serialised(events)) {
            for (const qsizetype offset : {0, 1, 3, 4, 5})
                ends.append(at + offset);
            at += 4 + event.size();
        }
        for (qsizetype end = 0; end < 6; ++end)
            ends.append(end);
        for (qsizetype end = at; end < whole.size(); ++end)
            ends.append(end);
        for (const qsizetype end : ends) {
            const Console console;
            StoreFixture fixture(StoreFixture::sessionBus());
            m_agent->answer = [&](const QDBusMessage &call) { m_agent->give(call, whole.left(end)); };
            QVERIFY(!fixture.fetch());
            QCOMPARE(console.count("agent events could not be fetched: The stream broke off."), 1);
            QCOMPARE(fixture.log.count(), 0);
            QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());
            m_agent->answer = nullptr;
            QVERIFY(fixture.fetch());
            QCOMPARE(fixture.other().cached(), serialised(events));
            QCOMPARE(dump(fixture.log), complete);
        }
    }

    void aFailedAnswer_data()
    {
        QTest::addColumn<Deed>("deed");
        QTest::addColumn<QString>("reason");
        const auto bytes = [](const char *name, const char *reason, const QByteArray &given) {
            QTest::newRow(name) << Deed([given](auto &agent, auto &call) { agent.give(call, given); })
                                << QString::fromUtf8(reason);
        };
        const auto descriptor = [](const char *name, const char *reason, const std::function<int()> &open) {
            QTest::newRow(name) << Deed([open](auto &agent, auto &call) {
                agent.giveDescriptor(call, open());
            }) << QString::fromUtf8(reason);
        };
        const auto reply = [](const char *name, const char *reason, const QVariantList &arguments) {
            QTest::newRow(name) << Deed([arguments](auto &agent, auto &call) {
                agent.bus().send(call.createReply(arguments));
            }) << QString::fromUtf8(reason);
        };
        constexpr const char *faulty = "These are not the bytes of an event stream.";
        constexpr const char *brokenOff = "The stream broke off.";
        const QByteArray whole = streamOf(serialised(history(3)));
        bytes("greeting", faulty, QByteArray("LWEV2\n") + whole.mid(6));
        bytes("greeting in part", faulty, "LX");
        bytes("count", faulty, whole.chopped(1) + '\4');
        bytes("bytes after the end", faulty, whole + 'x');
        bytes("length", faulty, QByteArray("LWEV1\n\1\0\0\1", 10));
        bytes("a greeting twice", faulty, QByteArray("LWEV1\nLWEV1\n"));
        descriptor("/dev/null", brokenOff, [] { return open("/dev/null", O_RDONLY); });
        descriptor("/dev/zero", faulty, [] { return open("/dev/zero", O_RDONLY); });
        descriptor("a program", faulty, [] { return open("/proc/self/exe", O_RDONLY); });
        descriptor("a folder", "Is a directory", [] { return open("/", O_RDONLY); });
        descriptor("write only", "Bad file descriptor", [] { return open("/dev/null", O_WRONLY); });
        descriptor("an event counter", faulty, [] { return eventfd(3, 0); });
        reply("nothing", "Unexpected reply signature: got \"\", expected \"h\"", {});
        reply("a text", "Unexpected reply signature: got \"s\", expected \"h\"",
              {QStringLiteral("/dev/null")});
        reply("a number", "Unexpected reply signature: got \"i\", expected \"h\"", {3});
        QTest::newRow("error reply") << Deed([](auto &agent, auto &call) {
            agent.bus().send(call.createErrorReply(QDBusError::LimitsExceeded, QStringLiteral("too many")));
        }) << QStringLiteral("too many");
        QTest::newRow("silent agent")
            << Deed([](auto &, auto &) {}) << QStringLiteral("Did not receive a reply.");
        QTest::newRow("silent stream")
            << Deed([whole](auto &agent, auto &call) { agent.give(call, whole.chopped(1), true); })
            << QStringLiteral("The agent stopped sending.");
    }
    void aFailedAnswer()
    {
        QFETCH(Deed, deed);
        QFETCH(QString, reason);
        const Console console;
        StoreFixture fixture(StoreFixture::sessionBus());
        m_agent->answer = [&](const QDBusMessage &call) { deed(*m_agent, call); };
        QElapsedTimer time;
        time.start();
        QVERIFY(!fixture.fetch());
        QVERIFY(time.elapsed() < 7000);
        const QStringList said =
            console.lines().filter(QStringLiteral("agent events could not be fetched: "));
        QCOMPARE(said.size(), 1);
        QVERIFY2(said[0].contains(reason), qPrintable(said[0]));
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());
        QCOMPARE(fixture.log.count(), 0);
        m_agent->answer = nullptr;
        m_agent->events = history(4);
        QVERIFY(fixture.fetch());
        QCOMPARE(dump(fixture.log), dumpOf(m_agent->events));
    }

    void goodStreamsOfOtherKinds_data()
    {
        QTest::addColumn<bool>("isFile");
        QTest::newRow("regular file") << true;
        QTest::newRow("a pipe that stays open") << false;
    }
    void goodStreamsOfOtherKinds()
    {
        QFETCH(bool, isFile);
        StoreFixture fixture(StoreFixture::sessionBus());
        const QList<ZELKRawEvent> events = history(600);
        QFile file(fixture.folder.filePath(QStringLiteral("stream")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(streamOf(serialised(events)));
        file.close();
        m_agent->answer = [&](const QDBusMessage &call) {
            if (isFile)
                m_agent->giveDescriptor(call, open(qPrintable(file.fileName()), O_RDONLY));
            else
                m_agent->give(call, streamOf(serialised(events)), true);
        };
        QVERIFY(fixture.fetch());
        QCOMPARE(dump(fixture.log), dumpOf(events));
    }

    void anAgentThatVanishes_data()
    {
        QTest::addColumn<bool>("answered");
        QTest::newRow("in the call") << false;
        QTest::newRow("in the stream") << true;
    }
    /// While a further request waits.
    void anAgentThatVanishes()
    {
        QFETCH(bool, answered);
        StoreFixture fixture(StoreFixture::sessionBus());
        m_agent->answer = [&](const QDBusMessage &call) {
            if (answered)
                m_agent->give(call, streamOf(serialised(history(9))).left(700), true);
        };
        QSignalSpy ended(fixture.store.get(), &ZELKLWCStore::fetchFinished);
        fixture.store->sync();
        QTRY_COMPARE(m_agent->questions.size(), 1);
        fixture.store->sync();
        m_agent->vanish();
        QVERIFY(!fixture.awaitFetch(ended));
        m_agent.reset();
        m_agent = std::make_unique<FakeAgent>();
        m_agent->events = history(9);
        QVERIFY(fixture.fetch());
        QCOMPARE(dump(fixture.log), dumpOf(m_agent->events));
    }

    void anOddEvent_data()
    {
        QTest::addColumn<QByteArray>("event");
        QTest::addColumn<bool>("isKept");
        const auto add = [](const char *name, const QByteArray &event, bool isKept = false) {
            QTest::newRow(name) << event << isKept;
        };
        const QString date = ZELKEventKeyDate;
        for (const char *text : {"", " ", "yesterday", "1e9", "nan", "inf", "0x10", "1,5", "7 ", "1.2.3"})
            add(qPrintable(QStringLiteral("date '%1'").arg(QLatin1String(text))),
                bytesOf(eventWith(date, QString::fromUtf8(text))));
        add("date as data", bytesOf(eventWith(date, QByteArray("700000000.5"))));
        add("date as a date", bytesOf(eventWith(date, QVariant::fromValue(ZELKDate(7e8)))));
        add("date as a truth", bytesOf(eventWith(date, true)), true); // the number 1
        add("date as a list", bytesOf(eventWith(date, QVariantList{QStringLiteral("1")})));
        add("date as a number", bytesOf(eventWith(date, 700000000.5)), true);
        add("date as a huge number", bytesOf(eventWith(date, 1e300)));
        add("no date", bytesOf({{ZELKEventKeyDescription, QStringLiteral("x")}}));
        add("name as a number", bytesOf(eventWith(ZELKEventKeyDescription, 5)), true);
        add("properties as a dictionary",
            bytesOf(eventWith(ZELKEventKeyProperties, QVariant::fromValue(history(1).first()))), true);
        add("a fifth key", bytesOf(eventWith(QStringLiteral("more"), QVariantList{1, true})), true);
        add("XML", xml(history(3).last()), true);
        add("XML with a NUL", xml(history(3).last()).replace("NULL", "N&#0;L"));
        add("XML with a UID", xml(history(3).last()).replace("<string>NULL", "<uid>4</uid><string>NULL"));
        add("a list", ZELKPropertyList::writeBinary(QVariantList{QStringLiteral("x")}).bytes);
        add("a text", ZELKPropertyList::writeBinary(QStringLiteral("x")).bytes);
        add("an empty dictionary",
            ZELKPropertyList::writeBinary(QVariant::fromValue(ZELKDictionary())).bytes);
        add("a NUL", QByteArray(1, '\0'));
        add("no list", "bplist00 and nothing more");
    }
    /// It alone is left out, with one line.
    void anOddEvent()
    {
        QFETCH(QByteArray, event);
        QFETCH(bool, isKept);
        const Console console;
        StoreFixture fixture(StoreFixture::sessionBus());
        const QList<QByteArray> good = serialised(history(2));
        m_agent->answer = [&](const QDBusMessage &call) {
            m_agent->give(call, streamOf({good[0], event, good[1]}));
        };
        QVERIFY(fixture.fetch());
        QCOMPARE(console.count("agent event 2 skipped: "), isKept ? 0 : 1);
        QCOMPARE(fixture.other().cached().size(), isKept ? 3 : 2);
        QCOMPARE(fixture.store->sortedCachedEventsFromDate({}, {}).size(), isKept ? 3 : 2);
        QCOMPARE(fixture.store->lastSyncDate(), fixture.clock->now());
    }

    /// Events of any bytes, and streams with any byte changed.
    void anyBytes()
    {
        QRandomGenerator random(11);
        const QList<QByteArray> good = serialised(history(3));
        StoreFixture fixture(StoreFixture::sessionBus());
        for (int round = 0; round < 300; ++round) {
            const Console quiet;
            QByteArray event = good[1];
            for (int i = 0; i <= round % 4; ++i)
                event[random.bounded(event.size())] = char(random.bounded(256));
            QByteArray stream = streamOf({good[0], event, good[2]});
            if (round % 3 == 0)
                stream[random.bounded(stream.size())] = char(random.bounded(256));
            m_agent->answer = [&](const QDBusMessage &call) { m_agent->give(call, stream); };
            const bool isComplete = fixture.fetch();
            QVERIFY(!fixture.store->isFetching());
            if (round % 3 != 0)
                QVERIFY(isComplete);
            zelkGuard([&] { fixture.store->setLastSyncDate(std::nullopt); });
        }
        const QList<QByteArray> cached = fixture.other().cached();
        QVERIFY(cached.contains(good[0]) && cached.contains(good[2]));
    }

private:
    std::unique_ptr<FakeAgent> m_agent;
};

QTEST_GUILESS_MAIN(StoreStreamsTest)
#include "tst_streams.moc"
