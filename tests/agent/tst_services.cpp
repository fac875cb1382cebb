#include "AgentFixture.h"
#include "BusClient.h"
#include "BusConnection.h"
#include "ClockEnvironment.h"
#include "ZELKFailingSQLitePort.h"
#include "ZELKLWAAgent.h"

#include <QElapsedTimer>
#include <QSignalSpy>

#include <csignal>
#include <limits>

using State = ZELKEventStreamReader::State;

namespace {

const QString storeName = u"org.zelk.lullwatch._store"_s;

} // namespace

class TestServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_agentBus = std::make_unique<BusConnection>(u"agent"_s);
        m_client = std::make_unique<BusConnection>(u"client"_s);
        QVERIFY(m_client->bus.isConnected());
    }
    void cleanup()
    {
        m_agent.reset();
        m_client.reset();
        m_agentBus.reset();
    }

    void showsOnlyTheProtocols()
    {
        QVERIFY(start());
        for (const QDBusMessage &call : {eventServiceCall("version"), controlServiceCall("version")}) {
            QCOMPARE(answerTo(m_client->bus, call).arguments().value(0).toString(), agentVersion());
            const QDBusMessage question = QDBusMessage::createMethodCall(
                call.service(), call.path(), u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s);
            QString xml = answerTo(m_client->bus, question).arguments().value(0).toString();
            xml.remove("interface name=\"org.freedesktop.DBus."_L1);
            QCOMPARE(xml.count("interface name="_L1), 1);
            QVERIFY(xml.contains(call.interface()));
        }
        for (const char *method : {"streams", "refuse", "deleteLater"})
            QCOMPARE(answerTo(m_client->bus, eventServiceCall(method)).type(), QDBusMessage::ErrorMessage);
    }

    void streamsAnyRangeInOrderAndWhole()
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        constexpr int count = 20000;
        fill(count);
        QVERIFY(start());
        const QList<std::tuple<double, double, int, int>> ranges{
            // from, to; the first event and how many: all of them settled before 0
            {-infinity, infinity, 0, count},
            {2.0, 4.0, 2, 3},
            {4.0, 2.0, 0, 0},
            {-1e308, 9.5, 0, count},
            {0.0, qQNaN(), 0, 0},
            {ZELKDate::distantPast().timeIntervalSinceReferenceDate(), 9.5, 0, count}};
        for (const auto &[from, to, first, length] : ranges) {
            const StreamedEvents found = readStream(ask(from, to));
            QCOMPARE(found.state, State::Complete);
            // Behind them comes what the agent records itself, once that has settled.
            QCOMPARE(found.names.filter(u"event "_s).size(), length);
            for (int i = 0; i < length; ++i) {
                QCOMPARE(found.names.at(i), u"event %1"_s.arg(first + i));
                QCOMPARE(found.dates.at(i), u"%1.000000"_s.arg(first + i));
            }
        }
    }

    void outlivesClientsThatHangUpAndLimitsStreams()
    {
        fill(5000);
        QVERIFY(start());
        for (int i = 0; i < 40; ++i) {
            const QDBusUnixFileDescriptor descriptor = ask();
            QVERIFY(descriptor.isValid());
            char byte = 0;
            QCOMPARE(read(descriptor.fileDescriptor(), &byte, 1), ssize_t(1));
        }
        QCOMPARE(readStream(ask()).state, State::Complete);

        QList<QDBusUnixFileDescriptor> open;
        for (int i = 0; i < ZELKLWAService::mostStreams; ++i)
            open.append(ask());
        QVERIFY(open.constLast().isValid());
        QCOMPARE(answerTo(m_client->bus, eventServiceCall("sortedEventsFromDate", {0.0, 1e9})).errorName(),
                 u"org.freedesktop.DBus.Error.LimitsExceeded"_s);
        open.removeFirst();
        bool isServed = false; // once is enough: each question takes a stream
        QTRY_VERIFY(isServed || (isServed = ask().isValid()));
    }

    void givesUpAStream_data()
    {
        const Rows<bool, QString> row;
        row("a client that does not read", false, "A client that did not read its events was given up.");
        row("records that can not be read", true, "Events can not be read");
    }
    void givesUpAStream()
    {
        const auto [breaks, line] = Rows<bool, QString>::fetch();
        fill(5000);
        std::signal(SIGPIPE, SIG_IGN);
        const auto port = std::make_shared<ZELKFailingSQLitePort>();
        ZELKLWAEventStore store(options().database, agentBundle(), port);
        QVERIFY(store.database());
        const ConsoleLines console;
        if (breaks)
            port->fail(ZELKFailingSQLitePort::Call::Step, SQLITE_ERROR, 1000, 1000000);
        ZELKLWAEventPipe pipe(store, 0, 1e9, std::chrono::milliseconds(breaks ? 60000 : 50));
        QSignalSpy finished(&pipe, &ZELKLWAEventPipe::finished);
        const QDBusUnixFileDescriptor end = pipe.takeReadingEnd();
        if (!breaks)
            QTRY_COMPARE(finished.size(), 1);
        const StreamedEvents found = readStream(end);
        QCOMPARE(found.state, State::Reading);
        QVERIFY(!breaks || (found.names.size() > 500 && found.names.size() < 1000));
        QCOMPARE(console.count(qPrintable(line)), 1);
    }

    void answersTheControlService()
    {
        QVERIFY(start());
        const auto removal = controlServiceCall("removeAgentFiles", {QByteArray(32, 'a')});
        QCOMPARE(answerTo(m_client->bus, removal).arguments(), QVariantList{false});

        const ConsoleLines console;
        const QString key = u"powerSupplyInterval"_s;
        const auto send = [&](const QVariantMap &defaults) {
            answerTo(m_client->bus, controlServiceCall("setDefaultsWithDictionary", {defaults}));
            return ZELKUserDefaults(options().settings).integerForKey(key);
        };
        QCOMPARE(send({{key, 120}, {u"colour"_s, u"red"_s}}), 120);
        QCOMPARE(console.size(), 1);
        for (const QVariant &wrong : {QVariant(9), QVariant(3601), QVariant(30.5), QVariant(u"30"_s),
                                      QVariant(true), QVariant(qulonglong(-1)), QVariant(QStringList{u""_s})})
            QCOMPARE(send({{key, wrong}}), 120);
        QCOMPARE(console.size(), 8);
    }

    void refusesTheNamesToASecondAgent()
    {
        for (const QString &name : {u"org.zelk.lullwatch.agent"_s, u"org.zelk.lullwatch.agent._service"_s}) {
            QVERIFY(m_client->bus.registerService(name));
            const ConsoleLines console;
            QVERIFY(!start());
            QCOMPARE(console.size(), 1);
            QVERIFY(!QFile::exists(options().database));
            m_agent.reset();
            QVERIFY(m_client->bus.unregisterService(name));
        }
        QVERIFY(start());
    }

    void tellsOfABurstOnceAndOfTheEndAtOnce()
    {
        QVERIFY(m_client->bus.registerService(storeName));
        const UpdateListener listener(m_client->bus);
        QVERIFY(start());
        for (int i = 0; i < 3; ++i)
            answerTo(m_client->bus, eventServiceCall("registerForEventUpdates", {storeName}));
        QTRY_COMPARE(listener.told, 1); // of the start
        QElapsedTimer elapsed;
        elapsed.start();
        writeFile(options().wtmp, readFile(realAccounting()));
        QTRY_COMPARE(listener.told, 2);
        QVERIFY(elapsed.elapsed() >= ZELKLWABurst::quietMilliseconds);

        const QSignalSpy finished(m_agent.get(), &ZELKLWAAgent::finished);
        m_agent->terminate();
        QTRY_COMPARE_WITH_TIMEOUT(listener.told, 3, 900);
        QCOMPARE(finished.size(), 0);
        const QStringList names = readStream(ask()).names;
        QCOMPARE(names.filter(u"accounting"_s).size(), 2);
        QCOMPARE(names.filter(u"monitor"_s), QStringList({u"Starting monitor"_s, u"Stopping monitor"_s}));
        QTRY_COMPARE(finished.size(), 1);
    }

    void registersOwnedNamesOnly()
    {
        ZELKLWAUpdateAnnouncer announcer(m_agentBus->bus);
        const ConsoleLines console;
        BusConnection caller(u"caller"_s);
        const QString callerName = caller.bus.baseService();
        for (const QString &name :
             {storeName, QString(), u"x"_s, u"a.b'"_s, u"org..x"_s, QString(300, u'a') + u".b"_s})
            announcer.add(name, callerName);
        QTRY_COMPARE(console.size(), 6);
        QVERIFY(announcer.isEmpty());

        QVERIFY(m_client->bus.registerService(storeName));
        announcer.add(storeName, callerName); // somebody else's
        QTRY_COMPARE(console.size(), 7);
        QVERIFY(announcer.isEmpty());
        QVERIFY(m_client->bus.unregisterService(storeName));

        QVERIFY(caller.bus.registerService(storeName));
        const QSignalSpy changed(&announcer, &ZELKLWAUpdateAnnouncer::registrationsChanged);
        announcer.add(storeName, callerName);
        QTRY_COMPARE(changed.size(), 1);
        announcer.remove(storeName, m_agentBus->bus.baseService()); // not by somebody else
        QVERIFY(!announcer.isEmpty());
        announcer.remove(storeName, callerName);
        QVERIFY(announcer.isEmpty());

        announcer.add(storeName, callerName);
        QTRY_VERIFY(!announcer.isEmpty());
        caller.bus.unregisterService(storeName);
        QTRY_VERIFY(announcer.isEmpty());
        announcer.add(callerName, callerName);
        QTRY_VERIFY(!announcer.isEmpty());
        caller.close();
        QTRY_VERIFY(announcer.isEmpty());
    }

private:
    ZELKLWAOptions options() const
    {
        ZELKLWAOptions options;
        options.database = m_folder->filePath(u"events.db"_s);
        options.settings = m_folder->filePath(u"settings.ini"_s);
        options.wtmp = m_folder->filePath(u"wtmp"_s);
        options.powerSupply = m_folder->filePath(u"power_supply"_s);
        return options;
    }
    /// One event a second from 0, in the records before the agent starts; they settled before the first.
    void fill(int count)
    {
        const ZELKEnvironmentScope early(environmentWith(std::make_shared<ZELKFixedClock>(ZELKDate(-100))));
        ZELKLWAEventStore store(options().database, agentBundle(), std::make_shared<ZELKSQLitePort>());
        std::vector<ZELKLWAEvent> events;
        for (int i = count; i-- > 0;)
            events.push_back({ZELKDate(i), u"event %1"_s.arg(i), ZELKMonitorPowerSource, QString(600, u'p')});
        store.record(events);
        store.settle();
    }
    bool start()
    {
        m_agent = std::make_unique<ZELKLWAAgent>(
            agentBundle(), ZELKLWAAgent::Buses{m_agentBus->bus, QDBusConnection(u"none"_s)}, options());
        return m_agent->start();
    }
    QDBusUnixFileDescriptor ask(double from = 0, double to = 1e9)
    {
        return answerTo(m_client->bus, eventServiceCall("sortedEventsFromDate", {from, to}))
            .arguments()
            .value(0)
            .value<QDBusUnixFileDescriptor>();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<BusConnection> m_agentBus;
    std::unique_ptr<BusConnection> m_client;
    std::unique_ptr<ZELKLWAAgent> m_agent;
};

QTEST_GUILESS_MAIN(TestServices)
#include "tst_services.moc"
