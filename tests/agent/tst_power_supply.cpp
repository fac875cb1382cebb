#include "AgentFixture.h"
#include "PropertyLists.h"
#include "ZELKLWAPowerSupplyWatcher.h"

#include <QMap>

namespace {

using Values = QMap<QByteArray, QByteArray>;

const Values battery{{"type", "Battery\n"},       {"scope", "System\n"},        {"present", "1\n"},
                     {"status", "Discharging\n"}, {"energy_now", "48000000\n"}, {"energy_full", "60000000\n"},
                     {"power_now", "9000000\n"},  {"capacity", "80\n"},         {"model_name", "PRB-1\n"}};

Values batteryWith(const Values &others)
{
    Values values = battery;
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

    void describes_data()
    {
        const Rows<Values, QByteArray, QVariantMap> row;
        const QString charging = ZELKPropertyIsCharging, capacity = ZELKPropertyCurrentCapacity,
                      empty = ZELKPropertyTimeToEmpty, full = ZELKPropertyTimeToFullCharge,
                      state = ZELKPropertyPowerSourceState;
        const QVariant none;
        using Map = QVariantMap;
        row("discharging", battery, "0",
            Map{{ZELKPropertyName, u"PRB-1"_s},
                {ZELKPropertyPowerSourceID, u"BAT0"_s},
                {ZELKPropertyTransportType, u"Internal"_s},
                {charging, false},
                {capacity, 80},
                {ZELKPropertyMaxCapacity, 100},
                {empty, 320},
                {full, none},
                {state, QString(ZELKPowerSourceBattery)}});
        row("charging", batteryWith({{"status", "Charging"}}), "1",
            Map{{charging, true}, {empty, none}, {full, 80}, {state, QString(ZELKPowerSourceAC)}});
        row("full", batteryWith({{"status", "Full"}, {"capacity", "103"}}), "1",
            Map{{charging, false}, {capacity, 100}, {empty, none}, {full, none}});
        row("by charge, a current with a sign",
            batteryWith({{"energy_now", ""},
                         {"power_now", ""},
                         {"charge_now", "2000000"},
                         {"current_now", "-1000000"}}),
            "0", Map{{empty, 120}});
        row("the driver's own estimate", batteryWith({{"time_to_empty_now", "5400"}}), "0", Map{{empty, 90}});
        row("hardly a current", batteryWith({{"power_now", "1"}}), "0", Map{{empty, none}});
        row("percent from energy", batteryWith({{"capacity", ""}, {"energy_now", "15000000"}}), "0",
            Map{{capacity, 25}});
        row("no mains known", batteryWith({{"status", "Not charging"}}), "",
            Map{{state, QString(ZELKPowerSourceAC)}});
        row("its own warning level", batteryWith({{"capacity_alert_min", "15"}}), "0",
            Map{{ZELKPropertyLowWarnLevel, 15}});
        row("no model", batteryWith({{"model_name", ""}}), "0", Map{{ZELKPropertyName, u"BAT0"_s}});
        row("a supply without a presence", batteryWith({{"type", "UPS"}, {"present", ""}}), "1",
            Map{{ZELKPropertyIsPresent, true}});
    }
    void describes()
    {
        const auto [supply, online, expected] = Rows<Values, QByteArray, QVariantMap>::fetch();
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

    void leavesOutWhatIsNoneOfOurs()
    {
        put("hid-mouse", batteryWith({{"scope", "Device"}}));
        put("pad", {{"type", "USB"}, {"scope", "Device"}, {"online", "1"}});
        put("BAT1", batteryWith({{"present", "0"}}));
        watch();
        QCOMPARE(m_seen.size(), 0);
        put("BAT0", batteryWith({{"status", "Unknown"}}));
        watch();
        QCOMPARE(m_seen.size(), 1);
        QCOMPARE(m_seen.constFirst().string(ZELKPropertyPowerSourceState), QString(ZELKPowerSourceUnknown));
    }

    void survivesStrangeAttributes()
    {
        put("BAT0", batteryWith({{"model_name", QByteArray("A\x01\xFF<&>\x07")},
                                 {"energy_now", "-9223372036854775808"},
                                 {"energy_full", "99999999999999999999"},
                                 {"power_now", "-9223372036854775808"},
                                 {"capacity", "-9223372036854775808"},
                                 {"status", QByteArray(5000, 'x')}}));
        QVERIFY(QDir(m_folder->path()).mkpath(u"BAT1/type"_s));
        watch();
        QCOMPARE(m_seen.size(), 1);
        QCOMPARE(m_seen.constFirst().string(ZELKPropertyName), u"A<&>"_s);
        QCOMPARE(m_seen.constFirst().value(ZELKPropertyCurrentCapacity).toInt(), 0);
    }

private:
    void put(const char *device, const Values &values)
    {
        for (auto value = values.begin(); value != values.end(); ++value)
            writeFile(
                m_folder->filePath(QString::fromLatin1(device) + u'/' + QString::fromLatin1(value.key())),
                value.value());
    }
    void watch()
    {
        const auto see = [this](const std::vector<ZELKLWAEvent> &events) {
            for (const ZELKLWAEvent &event : events)
                m_seen.append(listIn(event.properties.toUtf8()));
        };
        ZELKLWAPowerSupplyWatcher(m_folder->path(), see).start();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QList<ZELKDictionary> m_seen;
};

QTEST_GUILESS_MAIN(TestPowerSupply)
#include "tst_power_supply.moc"
