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
    void say(const QString &word)
    {
        static const QMap<QString, QByteArray> messages{
            {u"supply"_s, "SUBSYSTEM=power_supply|POWER_SUPPLY_TYPE=Mains"},
            {u"battery"_s, "SUBSYSTEM=power_supply|POWER_SUPPLY_TYPE=Battery"},
            {u"dock"_s, "SUBSYSTEM=platform|EVENT=dock"},
            {u"plugged"_s, "SUBSYSTEM=drm|HOTPLUG=1"},
            {u"leased"_s, "SUBSYSTEM=drm|LEASE=1"}};
        const QByteArray bytes =
            "change@/devices/platform/dock.0|ACTION=change|DEVPATH=/devices/platform/dock.0|" +
            messages[word] + '|';
        if (const auto event = ZELKKernelEvent::parse(QByteArray(bytes).replace('|', '\0').toStdString()))
            Q_EMIT received(*event);
    }
    bool isDeaf = false;
};

/// A display's identification with the name "LCD 27".
QByteArray identification()
{
    return QByteArray(72, '\0') + QByteArray("\0\0\0\xFC\0LCD 27\n      ", 18) + QByteArray(38, '\0');
}

struct Bed
{
    Bed()
    {
        play(u"ps/AC/type=Mains, ps/AC/online=1, ps/BAT0/type=Battery, platform/dock.0/type=dock_station, "
             "platform/dock.0/docked=0, platform/dock.1/type=ata_bay, platform/dock.1/docked=0, "
             "drm/card0-HDMI-A-1/status=disconnected, drm/card0-eDP-1/status=connected, drm/version=drm"_s);
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
        watcher->start();
    }
    /// FILE=VALUE, -FOLDER, or what happens.
    void play(const QString &story)
    {
        for (const QString &step : story.split(u", "_s)) {
            const QString path = folder.filePath(step.section(u'=', 0, 0));
            if (step.startsWith(u'-'))
                QDir(folder.filePath(step.mid(1))).removeRecursively();
            else if (step.contains(u'='))
                writeFile(path, step.endsWith("=LCD"_L1) ? identification()
                                                         : step.section(u'=', 1).toUtf8() + '\n');
            else if (actions.contains(step))
                actions[step]();
            else
                kernel->say(step);
        }
    }

    const QMap<QString, std::function<void()>> actions{{u"start"_s, [this] { watcher->start(); }},
                                                       {u"stop"_s, [this] { watcher->stop(); }},
                                                       {u"woken"_s, [this] { watcher->systemDidWake(); }},
                                                       {u"lost"_s, [this] { Q_EMIT kernel->lost(); }},
                                                       {u"deaf"_s, [this] { kernel->isDeaf = true; }},
                                                       {u"asleep"_s, [this] {
                                                            watcher->setWakeCheck([this] {
                                                                lines += u"wake"_s;
                                                                play(u"ps/AC/online=0"_s);
                                                            });
                                                        }}};
    QTemporaryDir folder;
    FakeKernel *kernel = nullptr;
    std::unique_ptr<ZELKLWADeviceWatcher> watcher;
    QStringList lines;
};

} // namespace

class TestDevices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tells_data()
    {
        const Rows<QString, QStringList> row;
        row("the charger goes and comes",
            "supply, dock, plugged, ps/AC/online=0, battery, dock, ps/AC/online=1, supply, ps/AC/online=0, "
            "supply, supply, ps/AC/online=1, supply",
            QStringList{u"Device powering off, AC, AC"_s, u"Device powered on, AC, AC"_s});
        row("supplies appear and leave",
            "ps/usb1/type=USB, ps/usb1/online=1, ps/usb1/model_name=Brick, ps/pad/type=USB, ps/pad/online=1, "
            "ps/pad/scope=Device, ps/usb2/type=USB, ps/usb2/online=0, supply, -ps/usb1, -ps/usb2, supply, "
            "supply",
            QStringList{u"Device powered on, Brick, usb1"_s, u"Device powering off, Brick, usb1"_s});
        row("docked", "platform/dock.0/docked=1, platform/dock.1/docked=1, dock",
            QStringList{u"Device powered on, dock.0, dock.0"_s});
        row("displays, named while they are there",
            "drm/card0-HDMI-A-1/status=connected, leased, drm/card0-HDMI-A-1/status=disconnected, plugged, "
            "drm/card0-HDMI-A-1/edid=LCD, drm/card0-HDMI-A-1/status=connected, plugged, "
            "drm/card0-HDMI-A-1/edid=, drm/card0-HDMI-A-1/status=disconnected, "
            "drm/card0-eDP-1/status=unknown, "
            "plugged",
            QStringList{u"Device powered on, LCD 27, card0-HDMI-A-1"_s,
                        u"Device powering off, LCD 27, card0-HDMI-A-1"_s,
                        u"Device powering off, eDP-1, card0-eDP-1"_s});
        row("while asleep, and while words were lost",
            "ps/AC/online=0, woken, platform/dock.0/docked=1, lost",
            QStringList{u"Device powering off, AC, AC"_s, u"Device powered on, dock.0, dock.0"_s});
        row("a word that waited while the machine slept", "asleep, supply",
            QStringList{u"wake"_s, u"Device powering off, AC, AC"_s});
        row("stopped, and nobody to hear", "stop, ps/AC/online=0, supply, deaf, start, woken", QStringList());
    }
    void tells()
    {
        const auto [story, expected] = Rows<QString, QStringList>::fetch();
        Bed bed;
        bed.play(story);
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

QTEST_GUILESS_MAIN(TestDevices)
#include "tst_devices.moc"
