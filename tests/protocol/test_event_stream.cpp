#include "Raised.h"
#include "Rows.h"
#include "ZELKEventStream.h"

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
    void arrivesWholeInPiecesOfAnySize()
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

    void tellsFaults_data()
    {
        const Rows<QByteArray, int, State> row;
        const QByteArray whole = streamOf({"one", "two"}, 2);
        row("broken off in an event", whole.left(15), 1, State::Reading);
        row("broken off in the number", whole.chopped(1), 2, State::Reading);
        row("another greeting", "LWEV2\n", 0, State::Faulty);
        row("another greeting's first byte", "b", 0, State::Faulty);
        row("a wrong number", streamOf({"one"}, 2), 1, State::Faulty);
        row("something after the number", whole + 'x', 2, State::Faulty);
        row("an event too long", QByteArray("LWEV1\n\1\0\0\1", 10), 0, State::Faulty);
        row("the longest length, not yet there", QByteArray("LWEV1\n\1\0\0\0", 10), 0, State::Reading);
    }
    void tellsFaults()
    {
        const auto [stream, events, state] = Rows<QByteArray, int, State>::fetch();
        for (const qsizetype size : {qsizetype(1), qsizetype(7), stream.size() + 1}) {
            const Read read = readInPieces(stream, size);
            QCOMPARE(read.events.size(), events);
            QCOMPARE(read.state, state);
        }
    }

    void refusesEventsOutOfBounds()
    {
        QByteArray stream;
        for (const std::size_t size : {0U, ZELKEventStream::longestEvent + 1U})
            QVERIFY(!raised([&] { ZELKEventStream::append(stream, std::string(size, 'x')); }).isEmpty());
        QVERIFY(stream.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestEventStream)
#include "test_event_stream.moc"
