#include "FakeAgent.h"

#include <QElapsedTimer>

#include <sys/eventfd.h>

using Deed = std::function<void(FakeAgent &, const QDBusMessage &)>;

namespace {

constexpr int shortLimit = 300; // milliseconds

ZELKDictionary eventWith(const QString &key, const QVariant &value)
{
    ZELKDictionary event = history(1).first();
    event.insert(key, value);
    return event;
}

Deed giving(const QByteArray &bytes, bool staysOpen = false)
{
    return [=](FakeAgent &agent, const QDBusMessage &call) { agent.give(call, bytes, staysOpen); };
}

Deed giving(const char *path, int mode = O_RDONLY)
{
    return [=](FakeAgent &agent, const QDBusMessage &call) { agent.giveDescriptor(call, open(path, mode)); };
}

const Deed silence = [](FakeAgent &, const QDBusMessage &) {};
const Deed eventCounter = [](FakeAgent &agent, const QDBusMessage &call) {
    agent.giveDescriptor(call, eventfd(3, 0));
};
const Deed errorReply = [](FakeAgent &agent, const QDBusMessage &call) {
    agent.bus().send(call.createErrorReply(QDBusError::LimitsExceeded, u"too many"_s));
};

Deed replying(const QVariantList &arguments)
{
    return [=](FakeAgent &agent, const QDBusMessage &call) { agent.bus().send(call.createReply(arguments)); };
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
        QList<qsizetype> ends{0, 1, 5};
        qsizetype at = 6;
        for (const QByteArray &event : serialised(events)) {
            ends << at << at + 1 << at + 4 << at + 5;
            at += 4 + event.size();
        }
        for (; at < whole.size(); ++at)
            ends.append(at);
        for (const qsizetype end : ends) {
            const ConsoleLines console;
            StoreFixture fixture(StoreFixture::sessionBus());
            m_agent->answer = [&](const QDBusMessage &call) { m_agent->give(call, whole.left(end)); };
            QVERIFY(!fixture.fetch());
            QCOMPARE(console.count("agent events could not be fetched: The stream broke off."), 1);
            QVERIFY(isUntouched(fixture));
            m_agent->answer = nullptr;
            QVERIFY(fixture.fetch());
            QCOMPARE(fixture.other().cached(), serialised(events));
            QCOMPARE(dump(fixture.log), complete);
        }
    }

    void aFailedAnswer_data()
    {
        const Rows<Deed, QString, int> row;
        constexpr const char *faulty = "These are not the bytes of an event stream.";

        const QByteArray whole = streamOf(serialised(history(3)));
        row("bytes after the end", giving(whole + 'x'), faulty);
        row("/dev/null", giving("/dev/null"), "The stream broke off.");
        row("a program", giving("/proc/self/exe"), faulty);
        row("a folder", giving("/"), "Is a directory");
        row("write only", giving("/dev/null", O_WRONLY), "Bad file descriptor");
        row("an event counter", eventCounter, faulty);
        row("a text", replying({u"/dev/null"_s}), "Unexpected reply signature: got \"s\", expected \"h\"");
        row("error reply", errorReply, "too many");
        row("silent agent", silence, "Did not receive a reply.", shortLimit);
        row("silent from the start", giving(QByteArray(), true), "The agent stopped sending.", shortLimit);
        row("silent stream", giving(whole.chopped(1), true), "The agent stopped sending.", shortLimit);
    }
    void aFailedAnswer()
    {
        const auto [deed, reason, limit] = Rows<Deed, QString, int>::fetch();
        const ConsoleLines console;
        StoreFixture fixture(StoreFixture::sessionBus());
        if (limit != 0)
            fixture.agentLimit = limit;
        fixture.renewStore();
        m_agent->answer = [&, &act = deed](const QDBusMessage &call) { act(*m_agent, call); };
        QElapsedTimer time;
        time.start();
        QVERIFY(!fixture.fetch());
        QVERIFY(time.elapsed() < 3000);
        QVERIFY(time.elapsed() >= limit * 9 / 10);
        const QStringList said = console.lines().filter(u"agent events could not be fetched: "_s);
        QCOMPARE(said.size(), 1);
        QVERIFY2(said[0].contains(reason), qPrintable(said[0]));
        QVERIFY(isUntouched(fixture));
        m_agent->answer = nullptr;
        m_agent->events = history(4);
        QVERIFY(fixture.fetch());
        QCOMPARE(dump(fixture.log), dumpOf(m_agent->events));
    }

    void goodStreamsOfOtherKinds()
    {
        const QByteArray stream = streamOf(serialised(history(600)));
        const QTemporaryDir folder;
        const QByteArray path = folder.filePath(u"stream"_s).toUtf8();
        writeFile(QString::fromUtf8(path), stream);
        for (const Deed &deed : {giving(path.constData()), giving(stream, true)}) {
            StoreFixture fixture(StoreFixture::sessionBus());
            m_agent->answer = [&](const QDBusMessage &call) { deed(*m_agent, call); };
            QVERIFY(fixture.fetch());
            QCOMPARE(dump(fixture.log), dumpOf(history(600)));
        }
    }

    /// In the call, or in the stream, while a further request waits.
    void anAgentThatVanishes()
    {
        for (const bool isAnswered : {false, true}) {
            StoreFixture fixture(StoreFixture::sessionBus());
            fixture.agentLimit = shortLimit;
            fixture.renewStore();
            m_agent->questions.clear();
            m_agent->answer = [&](const QDBusMessage &call) {
                if (isAnswered)
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
    }

    void anOddEvent_data()
    {
        const Rows<QByteArray, bool> row; // kept or not
        const QString date = ZELKEventKeyDate;
        const QVariant dictionary = QVariant::fromValue(history(1).first());
        const QByteArray xml = ZELKPropertyList::writeXml(QVariant::fromValue(history(3).last())).bytes;
        for (const QString &text : {u""_s, u"yesterday"_s, u"1e9"_s, u"nan"_s, u"1,5"_s, u"7 "_s})
            row(qPrintable(u"date '%1'"_s.arg(text)), bytesOf(eventWith(date, text)));
        row("date as data", bytesOf(eventWith(date, QByteArray("700000000.5"))));
        row("date as a date", bytesOf(eventWith(date, QVariant::fromValue(ZELKDate(7e8)))));
        row("date as a truth", bytesOf(eventWith(date, true)), true); // the number 1
        row("date as a number", bytesOf(eventWith(date, 700000000.5)), true);
        row("date as a huge number", bytesOf(eventWith(date, 1e300)));
        row("no date", bytesOf({{ZELKEventKeyDescription, u"x"_s}}));
        row("name as a number", bytesOf(eventWith(ZELKEventKeyDescription, 5)), true);
        row("properties as a dictionary", bytesOf(eventWith(ZELKEventKeyProperties, dictionary)), true);
        row("a fifth key", bytesOf(eventWith(u"more"_s, QVariantList{1, true})), true);
        row("XML", xml, true);
        row("XML with a NUL", QByteArray(xml).replace("NULL", "N&#0;L"));
        row("XML with a UID", QByteArray(xml).replace("<string>NULL", "<uid>4</uid><string>NULL"));
        row("a list", ZELKPropertyList::writeBinary(QVariantList{u"x"_s}).bytes);
        row("no list", "bplist00 and nothing more");
    }
    /// It alone is left out, with one line.
    void anOddEvent()
    {
        const auto [event, isKept] = Rows<QByteArray, bool>::fetch();
        const ConsoleLines console;
        StoreFixture fixture(StoreFixture::sessionBus());
        const QList<QByteArray> good = serialised(history(2));
        const QByteArray stream = streamOf({good[0], event, good[1]});
        m_agent->answer = [&](const QDBusMessage &call) { m_agent->give(call, stream); };
        QVERIFY(fixture.fetch());
        QCOMPARE(console.count("agent event 2 skipped: "), isKept ? 0 : 1);
        QCOMPARE(fixture.store->sortedCachedEventsFromDate({}, {}).size(), isKept ? 3 : 2);
        QCOMPARE(fixture.store->lastSyncDate(), fixture.clock->now());
    }

private:
    static bool isUntouched(const StoreFixture &fixture)
    {
        return fixture.log.count() == 0 && fixture.store->lastSyncDate() == ZELKDate::distantPast();
    }
    std::unique_ptr<FakeAgent> m_agent;
};

QTEST_GUILESS_MAIN(StoreStreamsTest)
#include "tst_streams.moc"
