#include "SliceFixture.h"
#include "ZELKScriptingService.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

namespace {

const QString properties = u"org.freedesktop.DBus.Properties"_s;
const QString root = u"/org/zelk/lullwatch"_s;

/// The service on a private bus, and a script's connection to it.
struct Bed : SliceFixture
{
    Bed() { record(); }
    ~Bed() { QDBusConnection::disconnectFromBus(u"script"_s); }

    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments = {}) const
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(u"org.zelk.lullwatch"_s, path, interface, method);
        message.setArguments(arguments);
        const QDBusPendingCall pending = script.asyncCall(message);
        if (!QTest::qWaitFor([&] { return pending.isFinished(); }))
            qFatal("no answer");
        return pending.reply();
    }
    QVariant get(const QString &path, const QString &interface, const QString &property) const
    {
        const QDBusMessage reply = call(root + path, properties, u"Get"_s, {interface, property});
        return reply.type() == QDBusMessage::ReplyMessage
                   ? reply.arguments().first().value<QDBusVariant>().variant()
                   : QVariant(reply.errorName());
    }
    QVariant entry(const QString &path, const QString &property) const
    {
        return get(u"/database/entries/"_s + path, u"org.zelk.lullwatch.Entry"_s, property);
    }
    QVariant slicesValue(const QString &property) const
    {
        return get(u"/visibleSlice"_s, u"org.zelk.lullwatch.VisibleSlice"_s, property);
    }

    QDBusConnection script = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"script"_s);
    ZELKScriptingService service{
        QDBusConnection::sessionBus(),
        u"org.zelk.lullwatch"_s,
        {u"1.0"_s, log, slice, [](const QString &key) { return key == u"database"; }}};
};

} // namespace

class ScriptingBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void objectsAnswer()
    {
        const Bed bed;
        const QString application = u"org.zelk.lullwatch.Application"_s;
        QCOMPARE(bed.get({}, application, u"database"_s).value<QDBusObjectPath>().path(),
                 root + u"/database"_s);
        QCOMPARE(bed.get({}, application, u"visibleSlice"_s).value<QDBusObjectPath>().path(),
                 root + u"/visibleSlice"_s);
        QCOMPARE(bed.get({}, application, u"version"_s), u"1.0"_s);
        QCOMPARE(bed.call(root, application, u"handlesKey"_s, {u"database"_s}).arguments(),
                 QVariantList{true});
        QCOMPARE(bed.call(root, application, u"handlesKey"_s, {u"log"_s}).arguments(), QVariantList{false});
    }

    void entriesAnswerByIndex()
    {
        const Bed bed;
        QCOMPARE(bed.get(u"/database"_s, u"org.zelk.lullwatch.Database"_s, u"count"_s), 8U);
        QCOMPARE(bed.entry(u"1"_s, u"date"_s), 1709596800.0 + 8 * hour);
        QCOMPARE(bed.entry(u"1"_s, u"summary"_s), bed.log.objectAtIndex(1)->summary());
        QCOMPARE(bed.entry(u"1"_s, u"monitor"_s), bed.log.objectAtIndex(1)->monitor());
        QCOMPARE(bed.entry(u"1"_s, u"visible"_s), true);
        QCOMPARE(bed.entry(u"7"_s, u"duplicates"_s), 1U);
        QCOMPARE(bed.entry(u"7/duplicates/0"_s, u"date"_s), 1709596800.0 + (3 * 24 + 8.001) * hour);
        // A path that an object gives of itself leads back to it.
        const auto events = qdbus_cast<QList<QDBusObjectPath>>(bed.slicesValue(u"events"_s));
        QCOMPARE(events.size(), 8);
        QCOMPARE(events.last().path(), bed.log.objectAtIndex(7)->objectSpecifier());
    }

    void theSliceIsSetAndRead()
    {
        Bed bed;
        const auto set = [&](const QString &property, const QVariant &value) {
            return bed
                .call(root + u"/visibleSlice"_s, properties, u"Set"_s,
                      {u"org.zelk.lullwatch.VisibleSlice"_s, property,
                       QVariant::fromValue(QDBusVariant(value))})
                .errorName();
        };
        QCOMPARE(set(u"start"_s, 1709596800 + 30 * 3600), QString());
        QCOMPARE(set(u"end"_s, 1709596800 + 53 * 3600), QString());
        QCOMPARE(bed.slice.start(), at(1, 0));
        QCOMPARE(bed.slice.end(), at(3, 0).addingTimeInterval(-1));
        QCOMPARE(bed.slicesValue(u"start"_s), 1709596800.0 + 24 * hour);
        QCOMPARE(bed.slicesValue(u"duration"_s), 48 * hour - 1);
        QCOMPARE(bed.slicesValue(u"asleep"_s), 12 * hour);
        QCOMPARE(bed.slicesValue(u"awake"_s), 36 * hour - 1);
        QCOMPARE(bed.slicesValue(u"title"_s), bed.range.absoluteDuration()->periodDescription());
        const auto summary = qdbus_cast<QMap<QString, double>>(bed.slicesValue(u"summary"_s));
        QCOMPARE(summary.value(u"Asleep"_s), 12 * hour);
        QCOMPARE(set(u"start"_s, u"yesterday"_s), u"org.freedesktop.DBus.Error.InvalidArgs"_s);
        QCOMPARE(set(u"title"_s, u"mine"_s), u"org.freedesktop.DBus.Error.PropertyReadOnly"_s);
        const QDBusMessage all = bed.call(root + u"/visibleSlice"_s, properties, u"GetAll"_s, {QString()});
        const auto values = qdbus_cast<QVariantMap>(all.arguments().first());
        QVERIFY(values.contains(u"off"_s) && !values.contains(u"events"_s));
    }

    void exportTellsTheLastError()
    {
        const Bed bed;
        const QString path = bed.folder.filePath(u"graph.png"_s);
        const auto exportWith = [&](QVariantMap arguments) {
            if (!arguments.contains(u"destinationFile"_s))
                arguments.insert(u"destinationFile"_s, path);
            return bed.call(root + u"/visibleSlice"_s, u"org.zelk.lullwatch.VisibleSlice"_s, u"export"_s,
                            {arguments});
        };
        QCOMPARE(exportWith({{u"width"_s, 500}, {u"height"_s, 300.0}}).errorName(), QString());
        QCOMPARE(QImage(path).size(), QSize(500, 300));
        const QDBusMessage wrong = exportWith({{u"border"_s, 3}});
        QCOMPARE(wrong.errorName(), u"org.zelk.lullwatch.ScriptError"_s);
        QCOMPARE(wrong.arguments(), (QVariantList{u"Parameter too large"_s, -1702}));
        const QDBusMessage last = exportWith({{u"border"_s, 3}, {u"destinationFile"_s, u"/no/where.png"_s}});
        QCOMPARE(last.arguments(), (QVariantList{u"Unable to create file"_s, -43}));
    }

    void whatIsNotThereIsRefused()
    {
        const Bed bed;
        const QString error = u"org.freedesktop.DBus.Error."_s;
        for (const auto *path :
             {"8", "01", "1/duplicates/0", "7/duplicates/1", "x", "1/2", "7/duplicates/0/1"})
            QVERIFY2(bed.entry(QLatin1String(path), u"date"_s).toString().startsWith(error), path);
        QCOMPARE(bed.entry(u"1"_s, u"colour"_s), error + u"UnknownProperty"_s);
        QCOMPARE(bed.get(u"/visibleSlice"_s, u"org.example"_s, u"start"_s), error + u"UnknownInterface"_s);
        QCOMPARE(bed.call(root, u"org.zelk.lullwatch.Application"_s, u"handlesKey"_s).errorName(),
                 error + u"UnknownMethod"_s);
    }

    void allIsDescribed()
    {
        const Bed bed;
        const auto describe = [&bed](const QString &path) {
            return bed.call(root + path, u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s)
                .arguments()
                .value(0)
                .toString();
        };
        for (const auto *path : {"", "/database", "/visibleSlice", "/database/entries/7/duplicates/0"}) {
            const QString xml = describe(QLatin1String(path));
            QXmlStreamReader reader(xml);
            while (!reader.atEnd())
                reader.readNext();
            QVERIFY2(!reader.hasError(), qPrintable(xml));
            QVERIFY2(xml.contains(u"org.zelk.lullwatch."_s), qPrintable(xml));
        }
        QVERIFY(describe({}).contains(u"<node name=\"visibleSlice\"/>"_s));
        QVERIFY(describe(u"/visibleSlice"_s).contains(u"name=\"export\""_s));
        QVERIFY(!describe(u"/database"_s).contains(u"<node name"_s)); // a million are not listed
    }
};

QTEST_MAIN(ScriptingBusTest)
#include "tst_bus.moc"
