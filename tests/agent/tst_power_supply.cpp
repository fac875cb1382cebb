#include "AgentFixture.h"
#include "ZELKLWAPowerSupplyWatcher.h"
#include "ZELKPropertyList.h"

#include <QMap>

namespace {

using Values = QMap<QByteArray, QByteArray>;

const Values battery{{"type", "Battery\n"},       {"scope", "System\n"},        {"present", "1\n"},
                     {"status", "Discharging\n"}, {"energy_now", "48000000\n"}, {"energy_full", "60000000\n"},
                     {"power_now", "9000000\n"},  {"capacity", "80\n"},         {"model_name", "PRB-1\n"}};

Values with(Values values, const Values &others)
{
    values.insert(others);
    return values;
}

} // namespace

class TestPowerSupply : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_seen.clear();
    }
    void describes_data();
    void describes();
    void leavesOutWhatIsNoneOfOurs();
    void tellsOfChangesOnly();
    void namesEachBatteryOnce();
    void survivesStrangeAttributes();

private:
    void put(const char *device, const Values &values)
    {
        for (auto value = values.begin(); value != values.end(); ++value)
            writeFile(m_folder->filePath(QString::fromLatin1(device) + QLatin1Char('/') +
                                         QString::fromLatin1(value.key())),
                      value.value());
    }
    std::unique_ptr<ZELKLWAPowerSupplyWatcher> watch()
    {
        auto watcher = std::make_unique<ZELKLWAPowerSupplyWatcher>(
            m_folder->path(), [this](const std::vector<ZELKLWAEvent> &events) {
                for (const ZELKLWAEvent &event : events)
                    m_seen.append(
                        ZELKPropertyList::read(event.properties.toStdString()).value.value<ZELKDictionary>());
            });
        watcher->start();
        return watcher;
    }
    QStringList names() const
    {
        QStringList result;
        for (const ZELKDictionary &properties : m_seen)
            result.append(properties.string(ZELKPropertyName));
        return result;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QList<ZELKDictionary> m_seen;
};

void TestPowerSupply::describes_data()
{
    QTest::addColumn<Values>("supply");
    QTest::addColumn<QByteArray>("online");
    QTest::addColumn<QVariantMap>("expected");
    const auto row = [](const char *name, const Values &supply, const char *online,
                        const QVariantMap &expected) {
        QTest::newRow(name) << supply << QByteArray(online) << expected;
    };
    const QString name = ZELKPropertyName, present = ZELKPropertyIsPresent, charging = ZELKPropertyIsCharging,
                  capacity = ZELKPropertyCurrentCapacity, empty = ZELKPropertyTimeToEmpty,
                  full = ZELKPropertyTimeToFullCharge, state = ZELKPropertyPowerSourceState,
                  warn = ZELKPropertyLowWarnLevel;
    const QVariant none;
    row("discharging", battery, "0",
        {{name, QStringLiteral("PRB-1")},
         {present, true},
         {charging, false},
         {capacity, 80},
         {ZELKPropertyMaxCapacity, 100},
         {empty, 320},
         {full, none},
         {ZELKPropertyPowerSourceID, QStringLiteral("BAT0")},
         {ZELKPropertyTransportType, QStringLiteral("Internal")},
         {state, QString(ZELKPowerSourceBattery)}});
    row("charging", with(battery, {{"status", "Charging"}}), "1",
        {{charging, true}, {empty, none}, {full, 80}, {state, QString(ZELKPowerSourceAC)}});
    row("full", with(battery, {{"status", "Full"}, {"capacity", "100"}}), "1",
        {{charging, false}, {capacity, 100}, {empty, none}, {full, none}});
    row("by charge, a current with a sign",
        with(battery,
             {{"energy_now", ""}, {"power_now", ""}, {"charge_now", "2000000"}, {"current_now", "-1000000"}}),
        "0", {{empty, 120}});
    row("the driver's own estimate", with(battery, {{"time_to_empty_now", "5400"}}), "0", {{empty, 90}});
    row("no current", with(battery, {{"power_now", "0"}}), "0", {{empty, none}});
    row("hardly a current", with(battery, {{"power_now", "1"}}), "0", {{empty, none}});
    row("percent from energy", with(battery, {{"capacity", ""}, {"energy_now", "15000000"}}), "0",
        {{capacity, 25}});
    row("percent out of bounds", with(battery, {{"capacity", "103"}}), "0", {{capacity, 100}});
    row("no mains known", with(battery, {{"status", "Not charging"}}), "",
        {{state, QString(ZELKPowerSourceAC)}});
    row("nothing known", with(battery, {{"status", "Unknown"}}), "",
        {{state, QString(ZELKPowerSourceUnknown)}});
    row("its own warning level", with(battery, {{"capacity_alert_min", "15"}}), "0", {{warn, 15}});
    row("a supply without a presence", with(battery, {{"type", "UPS"}, {"present", ""}}), "1",
        {{present, true}});
}

void TestPowerSupply::describes()
{
    QFETCH(Values, supply);
    QFETCH(QByteArray, online);
    QFETCH(QVariantMap, expected);
    put("BAT0", supply);
    if (!online.isEmpty())
        put("AC", {{"type", "Mains"}, {"online", online}});
    watch();
    QCOMPARE(m_seen.size(), 1);
    for (auto value = expected.begin(); value != expected.end(); ++value) {
        const QVariant found = m_seen.constFirst().value(value.key());
        QCOMPARE(found.isValid(), value->isValid());
        QVERIFY2(found.toString() == value->toString(), qPrintable(value.key()));
    }
}

void TestPowerSupply::leavesOutWhatIsNoneOfOurs()
{
    put("hid-mouse", with(battery, {{"scope", "Device"}}));
    put("pad", {{"type", "USB"}, {"scope", "Device"}, {"online", "1"}});
    put("BAT1", with(battery, {{"present", "0"}}));
    watch();
    QCOMPARE(m_seen.size(), 0);
    put("BAT0", with(battery, {{"status", "Unknown"}}));
    watch();
    QCOMPARE(m_seen.size(), 1);
    QCOMPARE(m_seen.constFirst().string(ZELKPropertyPowerSourceState), QString(ZELKPowerSourceUnknown));
}

void TestPowerSupply::tellsOfChangesOnly()
{
    put("BAT0", battery);
    const auto watcher = watch();
    put("BAT0", {{"energy_now", "47900000"}, {"power_now", "8000000"}});
    watcher->readNow();
    QCOMPARE(m_seen.size(), 1);
    put("BAT0", {{"capacity", "79"}});
    watcher->readNow();
    QCOMPARE(m_seen.size(), 2);
    put("BAT0", {{"present", "0"}, {"model_name", ""}, {"status", "Unknown"}});
    watcher->readNow();
    watcher->readNow();
    QCOMPARE(m_seen.size(), 3);
    QCOMPARE(m_seen.constLast().value(ZELKPropertyIsPresent), QVariant(false));
    put("BAT0", battery);
    watcher->readNow();
    QVERIFY(QDir(m_folder->filePath(QStringLiteral("BAT0"))).removeRecursively());
    watcher->readNow();
    watcher->readNow();
    QCOMPARE(m_seen.size(), 5);
    QCOMPARE(m_seen.constLast().value(ZELKPropertyIsPresent), QVariant(false));
    QCOMPARE(names(), QStringList(5, QStringLiteral("PRB-1")));
}

void TestPowerSupply::namesEachBatteryOnce()
{
    put("BAT0", battery);
    put("BAT1", battery);
    put("BAT2", with(battery, {{"model_name", ""}}));
    const auto watcher = watch();
    put("BAT0", {{"capacity", "50"}});
    put("BAT1", {{"capacity", "40"}});
    watcher->readNow();
    const QString first = QStringLiteral("PRB-1"), second = QStringLiteral("PRB-1 (BAT1)");
    QCOMPARE(names(), QStringList({first, second, QStringLiteral("BAT2"), first, second}));
}

void TestPowerSupply::survivesStrangeAttributes()
{
    put("BAT0", with(battery, {{"model_name", QByteArray("A\x01\xFF<&>\x07")},
                               {"energy_now", "-9223372036854775808"},
                               {"energy_full", "99999999999999999999"},
                               {"power_now", "-9223372036854775808"},
                               {"capacity", "-9223372036854775808"},
                               {"status", QByteArray(5000, 'x')}}));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("BAT1/type")));
    watch();
    QCOMPARE(m_seen.size(), 1);
    QCOMPARE(m_seen.constFirst().string(ZELKPropertyName), QStringLiteral("A<&>"));
    QCOMPARE(m_seen.constFirst().value(ZELKPropertyCurrentCapacity).toInt(), 0);
}

QTEST_GUILESS_MAIN(TestPowerSupply)
#include "tst_power_supply.moc"
