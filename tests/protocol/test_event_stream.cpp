#include "ZELKAssertion.h"
#include "ZELKEventStream.h"

#include <QTest>

#include <string>

using State = ZELKEventStreamReader::State;

namespace {

QByteArray streamOf(const QList<QByteArray> &events, std::uint64_t count)
{
    QByteArray stream = ZELKEventStream::begin();
    for (const QByteArray &event : events)
        ZELKEventStream::append(stream, event.toStdString());
    return stream + ZELKEventStream::end(count);
}

struct Read
{
    QList<QByteArray> events;
    State state;
};

Read readInPieces(const QByteArray &stream, qsizetype size)
{
    ZELKEventStreamReader reader;
    Read read;
    for (qsizetype at = 0; at < stream.size(); at += size) {
        reader.feed(stream.mid(at, size).toStdString());
        while (const auto event = reader.next())
            read.events.append(QByteArray(event->data(), qsizetype(event->size())));
    }
    read.state = reader.state();
    return read;
}

} // namespace

class TestEventStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arrivesWholeInPiecesOfAnySize();
    void tellsFaults_data();
    void tellsFaults();
    void refusesEventsOutOfBounds();
};

void TestEventStream::arrivesWholeInPiecesOfAnySize()
{
    const QList<QByteArray> events{"a", QByteArray(300, 'b'), QByteArray("\0\0\0\0", 4), "d"};
    const QByteArray stream = streamOf(events, 4);
    QCOMPARE(stream.left(11), QByteArray("LWEV1\n\0\0\0\1a", 11));
    for (qsizetype size = 1; size <= stream.size(); ++size) {
        const Read read = readInPieces(stream, size);
        QCOMPARE(read.events, events);
        QCOMPARE(read.state, State::Complete);
    }
    QCOMPARE(readInPieces(streamOf({}, 0), 5).state, State::Complete);
}

void TestEventStream::tellsFaults_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<int>("events");
    QTest::addColumn<State>("state");

    const QByteArray whole = streamOf({"one", "two"}, 2);
    QTest::newRow("nothing") << QByteArray() << 0 << State::Reading;
    QTest::newRow("broken off in an event") << whole.left(15) << 1 << State::Reading;
    QTest::newRow("broken off before the number") << whole.chopped(12) << 2 << State::Reading;
    QTest::newRow("broken off in the number") << whole.chopped(1) << 2 << State::Reading;
    QTest::newRow("another greeting") << QByteArray("LWEV2\n") << 0 << State::Faulty;
    QTest::newRow("another greeting's first byte") << QByteArray("b") << 0 << State::Faulty;
    QTest::newRow("a wrong number") << streamOf({"one"}, 2) << 1 << State::Faulty;
    QTest::newRow("something after the number") << whole + 'x' << 2 << State::Faulty;
    QTest::newRow("an event too long") << QByteArray("LWEV1\n\1\0\0\1", 10) << 0 << State::Faulty;
    QTest::newRow("the longest length, not yet there")
        << QByteArray("LWEV1\n\1\0\0\0", 10) << 0 << State::Reading;
}

void TestEventStream::tellsFaults()
{
    QFETCH(QByteArray, stream);
    QFETCH(int, events);
    QFETCH(State, state);
    for (const qsizetype size : {qsizetype(1), qsizetype(7), stream.size() + 1}) {
        const Read read = readInPieces(stream, size);
        QCOMPARE(read.events.size(), events);
        QCOMPARE(read.state, state);
    }
}

void TestEventStream::refusesEventsOutOfBounds()
{
    QByteArray stream;
    QVERIFY_EXCEPTION_THROWN(ZELKEventStream::append(stream, {}), ZELKAssertionFailure);
    const std::string tooLong(ZELKEventStream::longestEvent + 1, 'x');
    QVERIFY_EXCEPTION_THROWN(ZELKEventStream::append(stream, tooLong), ZELKAssertionFailure);
    QVERIFY(stream.isEmpty());
}

QTEST_GUILESS_MAIN(TestEventStream)
#include "test_event_stream.moc"
