#pragma once

#include "FakeAgentLookup.h"
#include "FakeServiceManagement.h"
#include "FakeWorkspace.h"
#include "OtherConnection.h"
#include "StoreHistory.h"
#include "ZELKAgentController.h"
#include "ZELKEnvironment.h"
#include "ZELKFailingSQLitePort.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCStore.h"
#include "ZELKServiceNames.h"
#include "ZELKUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

/// The application's own configuration, less the waiting for the disk and for locks.
inline std::shared_ptr<const ZELKBundle> storeBundle(const QString &folder, int busyMilliseconds = 200)
{
    QFile source(QStringLiteral(ZELK_INFO_PLIST));
    QByteArray bytes = source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    bytes.replace("synchronous = FULL", "synchronous = OFF");
    bytes.replace("busy_timeout = 2000", "busy_timeout = " + QByteArray::number(busyMilliseconds));
    QFile copy(folder + QStringLiteral("/Info.plist"));
    if (copy.open(QIODevice::WriteOnly))
        copy.write(bytes);
    copy.close();
    return std::make_shared<ZELKBundle>(folder);
}

/// A store with all it meets, at noon of a fixed day.
struct StoreFixture
{
    using Call = ZELKFailingSQLitePort::Call;

    QTemporaryDir folder;
    std::shared_ptr<ZELKFixedClock> clock = std::make_shared<ZELKFixedClock>(ZELKDate(760'000'000.5));
    std::shared_ptr<const ZELKBundle> bundle;
    ZELKEnvironmentScope scope;
    std::shared_ptr<FakeServiceManagement> jobs = std::make_shared<FakeServiceManagement>();
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
    std::shared_ptr<FakeAgentLookup> lookup = std::make_shared<FakeAgentLookup>();
    ZELKAgentController controller;
    ZELKUserDefaults defaults;
    ZELKLWCDateRangeController range;
    ZELKLWCLog log;
    QDBusConnection bus;
    std::shared_ptr<ZELKFailingSQLitePort> port = std::make_shared<ZELKFailingSQLitePort>();
    std::unique_ptr<ZELKLWCStore> store;

    explicit StoreFixture(const QDBusConnection &aBus = QDBusConnection(QStringLiteral("none")),
                          int busyMilliseconds = 200)
        : bundle(storeBundle(folder.path(), busyMilliseconds))
        , scope(environment())
        , controller({jobs, workspace, lookup})
        , defaults(folder.filePath(QStringLiteral("defaults.ini")))
        , range(defaults)
        , bus(aBus)
    {
        log.setDateRange(&range);
        log.awakeFromNib();
        setInstalled(true);
        store = makeStore();
    }
    ~StoreFixture() { store.reset(); }

    /// The bus that the store of a test meets its agent on.
    static QDBusConnection sessionBus()
    {
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("store"));
    }
    QString file() const { return folder.filePath(QStringLiteral("cache.lullwatch-events")); }
    std::unique_ptr<ZELKLWCStore> bareStore() const
    {
        return std::make_unique<ZELKLWCStore>(ZELKLWCStore::World{bundle, port, bus, file()});
    }
    std::unique_ptr<ZELKLWCStore> makeStore()
    {
        auto made = bareStore();
        made->setAgentController(&controller);
        made->setLogController(&log);
        made->awakeFromNib();
        return made;
    }
    void setInstalled(bool installed)
    {
        workspace->instances[QStringLiteral("org.zelk.lullwatch.agent")] = installed ? 1 : 0;
        lookup->serviceName = installed ? QStringLiteral("org.zelk.lullwatch.agent._service") : QString();
        lookup->version = QStringLiteral("1");
        controller.updateState();
    }
    /// Runs a fetch as a timer would, to its end. True when it was complete.
    bool fetch()
    {
        QSignalSpy ended(store.get(), &ZELKLWCStore::fetchFinished);
        zelkGuard([this] { store->fetchAgentEvents(); });
        return awaitFetch(ended);
    }
    bool awaitFetch(QSignalSpy &ended) const
    {
        while (store->isFetching() && ended.wait(8000)) {
        }
        return !store->isFetching() && !ended.isEmpty() && ended.last().first().toBool();
    }
    OtherConnection other() const { return OtherConnection(file()); }
    /// Without their companions.
    QStringList filesAside() const
    {
        return QDir(folder.path())
            .entryList({QStringLiteral("*.damaged-*")}, QDir::Files, QDir::Name)
            .filter(QRegularExpression(QStringLiteral("-[0-9]+$")));
    }

private:
    ZELKEnvironment environment() const
    {
        ZELKEnvironment made = ZELKEnvironment::system();
        made.clock = clock;
        made.zone = QTimeZone::utc();
        made.locale = QLocale::c();
        made.mainBundle = bundle;
        return made;
    }
};
