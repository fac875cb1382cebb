#include "Files.h"
#include "PowerLines.h"
#include "Rows.h"
#include "ZELKLWADeviceWatcher.h"
#include "ZELKNetlinkKernelEvents.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace {

/// Speaks for the kernel.
class FakeKernel : public ZELKKernelEvents
{
public:
    bool start() override { return !isDeaf; }
    void stop() override {}
    /// Parts are separated as the kernel does with zeros.
    void say(const char *message)
    {
        const QByteArray bytes = QByteArray(message).replace('|', '\0') + '\0';
        if (const auto event = ZELKKernelEvent::parse(bytes.toStdString()))
            Q_EMIT received(*event);
    }
    bool isDeaf = false;
};

constexpr auto supplyChanged =
    "change@/devices/AC|ACTION=change|DEVPATH=/devices/AC|SUBSYSTEM=power_supply|POWER_SUPPLY_TYPE=Mains";
constexpr auto batteryChanged =
    "change@/devices/B|ACTION=change|DEVPATH=/devices/B|SUBSYSTEM=power_supply|POWER_SUPPLY_TYPE=Battery";
constexpr auto dockChanged = "change@/devices/platform/dock.0|ACTION=change|DEVPATH=/devices/platform/dock.0|"
                             "SUBSYSTEM=platform|EVENT=dock";
constexpr auto displayPlugged =
    "change@/devices/c|ACTION=change|DEVPATH=/devices/c/card0|SUBSYSTEM=drm|HOTPLUG=1";
constexpr auto displayLeased =
    "change@/devices/c|ACTION=change|DEVPATH=/devices/c/card0|SUBSYSTEM=drm|LEASE=1";

/// A display's identification with the name "LCD 27".
QByteArray identification()
{
    QByteArray bytes(128, '\0');
    bytes.replace(72, 18, QByteArray("\0\0\0\xFC\0LCD 27\n      ", 18));
    return bytes;
}

struct Bed
{
    Bed()
    {
        put("ps/AC/type", "Mains\n");
        put("ps/AC/online", "1\n");
        put("ps/BAT0/type", "Battery\n");
        put("platform/dock.0/type", "dock_station\n");
        put("platform/dock.0/docked", "0\n");
        put("platform/dock.1/type", "ata_bay\n");
        put("platform/dock.1/docked", "0\n");
        put("drm/card0-HDMI-A-1/status", "disconnected\n");
        put("drm/card0-eDP-1/status", "connected\n");
        put("drm/version", "drm\n");
        const ZELKPoweredDevices::Folders folders{folder.filePath(u"ps"_s), folder.filePath(u"drm"_s),
                                                  folder.filePath(u"platform"_s)};
        auto events = std::make_unique<FakeKernel>();
        kernel = events.get();
        watcher = std::make_unique<ZELKLWADeviceWatcher>(
            folders, std::move(events), [this](const std::vector<ZELKLWAEvent> &seen) {
                for (const ZELKLWAEvent &event : seen)
                    lines += QStringList{event.event, propertiesOf(event).string(ZELKPropertyName),
                                         propertiesOf(event).string(u"Device ID"_s)}
                                 .join(u", "_s);
            });
    }
    void put(const char *path, const QByteArray &value)
    {
        writeFile(folder.filePath(QString::fromLatin1(path)), value);
    }
    void take(const char *path) { QDir(folder.filePath(QString::fromLatin1(path))).removeRecursively(); }

    QTemporaryDir folder;
    FakeKernel *kernel = nullptr;
    std::unique_ptr<ZELKLWADeviceWatcher> watcher;
    QStringList lines;
};

using Story = std::function<void(Bed &)>;

} // namespace

class TestDevices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tells_data();
    void tells()
    {
        const auto [story, expected] = Rows<Story, QStringList>::fetch();
        Bed bed;
        bed.watcher->start();
        story(bed);
        QCOMPARE(bed.lines, expected);
    }

    void parses_data()
    {
        const Rows<std::string, QString> row;
        row("of the device daemon", std::string("libudev\0\xFE\xED\0\0", 12), QString());
        row("cut off", std::string("add@/x\0ACTION=add\0DEVPATH=/x\0SUBSYS=", 36), u"add /x "_s);
        row("whole", std::string("add@/x\0ACTION=add\0DEVPATH=/x\0SUBSYSTEM=drm\0", 43), u"add /x drm"_s);
    }
    void parses()
    {
        const auto [message, expected] = Rows<std::string, QString>::fetch();
        const auto event = ZELKKernelEvent::parse(message);
        QCOMPARE(event ? event->action + u' ' + event->devicePath + u' ' + event->subsystem : QString(),
                 expected);
    }

    void hearsTheKernel()
    {
        QFile null(u"/sys/devices/virtual/mem/null/uevent"_s);
        if (!null.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            QSKIP("SKIPPED: only root may have the kernel repeat an event");
        ZELKNetlinkKernelEvents kernel;
        QVERIFY(kernel.start());
        QString heard;
        connect(&kernel, &ZELKKernelEvents::received, this, [&](const ZELKKernelEvent &event) {
            if (event.devicePath == u"/devices/virtual/mem/null"_s)
                heard = event.action + u' ' + event.subsystem;
        });
        if (null.write("change") < 0)
            QSKIP("SKIPPED: the kernel does not repeat an event here");
        QTRY_COMPARE(heard, u"change mem"_s);
    }
};

void TestDevices::tells_data()
{
    const Rows<Story, QStringList> row;
    using Lines = QStringList;
    row("the charger goes and comes", Story([](Bed &bed) {
            for (const auto *message : {supplyChanged, dockChanged, displayPlugged})
                bed.kernel->say(message);
            bed.put("ps/AC/online", "0");
            bed.kernel->say(batteryChanged);
            bed.kernel->say(dockChanged);
            bed.kernel->say(supplyChanged);
            bed.kernel->say(supplyChanged);
            bed.put("ps/AC/online", "1");
            bed.kernel->say(supplyChanged);
        }),
        Lines{u"Device powering off, AC, AC"_s, u"Device powered on, AC, AC"_s});
    row("supplies appear and leave", Story([](Bed &bed) {
            bed.put("ps/usb1/type", "USB");
            bed.put("ps/usb1/online", "1");
            bed.put("ps/usb1/model_name", "Brick\n");
            bed.put("ps/pad/type", "USB");
            bed.put("ps/pad/online", "1");
            bed.put("ps/pad/scope", "Device");
            bed.put("ps/usb2/type", "USB");
            bed.put("ps/usb2/online", "0");
            bed.kernel->say(supplyChanged);
            bed.take("ps/usb1");
            bed.take("ps/usb2");
            bed.kernel->say(supplyChanged);
            bed.kernel->say(supplyChanged);
        }),
        Lines{u"Device powered on, Brick, usb1"_s, u"Device powering off, Brick, usb1"_s});
    row("docked", Story([](Bed &bed) {
            bed.put("platform/dock.0/docked", "1");
            bed.put("platform/dock.1/docked", "1");
            bed.kernel->say(dockChanged);
        }),
        Lines{u"Device powered on, dock.0, dock.0"_s});
    row("displays, named while they are there", Story([](Bed &bed) {
            bed.put("drm/card0-HDMI-A-1/edid", identification());
            bed.put("drm/card0-HDMI-A-1/status", "connected\n");
            bed.kernel->say(displayLeased);
            bed.kernel->say(displayPlugged);
            bed.put("drm/card0-HDMI-A-1/edid", "");
            bed.put("drm/card0-HDMI-A-1/status", "disconnected\n");
            bed.put("drm/card0-eDP-1/status", "unknown\n");
            bed.kernel->say(displayPlugged);
        }),
        Lines{u"Device powered on, LCD 27, card0-HDMI-A-1"_s,
              u"Device powering off, LCD 27, card0-HDMI-A-1"_s,
              u"Device powering off, eDP-1, card0-eDP-1"_s});
    row("while asleep, and while words were lost", Story([](Bed &bed) {
            bed.put("ps/AC/online", "0");
            bed.watcher->systemDidWake();
            bed.put("platform/dock.0/docked", "1");
            Q_EMIT bed.kernel->lost();
        }),
        Lines{u"Device powering off, AC, AC"_s, u"Device powered on, dock.0, dock.0"_s});
    row("a word that waited while the machine slept", Story([](Bed &bed) {
            bed.watcher->setWakeCheck([&bed] {
                bed.lines += u"wake"_s;
                bed.put("ps/AC/online", "0");
            });
            bed.kernel->say(supplyChanged);
        }),
        Lines{u"wake"_s, u"Device powering off, AC, AC"_s});
    row("stopped, and nobody to hear", Story([](Bed &bed) {
            bed.watcher->stop();
            bed.put("ps/AC/online", "0");
            bed.kernel->say(supplyChanged);
            bed.kernel->isDeaf = true;
            bed.watcher->start();
            bed.watcher->systemDidWake();
        }),
        Lines{});
}

QTEST_GUILESS_MAIN(TestDevices)
#include "tst_devices.moc"
