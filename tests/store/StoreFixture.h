#pragma once

#include "ConsoleLines.h"
#include "FakeAgentLookup.h"
#include "FakeServiceManagement.h"
#include "FakeWorkspace.h"
#include "Files.h"
#include "OtherConnection.h"
#include "Raised.h"
#include "Rows.h"
#include "StoreHistory.h"
#include "ZELKAgentController.h"
#include "ZELKEnvironment.h"
#include "ZELKFailingSQLitePort.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCStore.h"
#include "ZELKServiceNames.h"
#include "ZELKUserDefaults.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

/// The application's own configuration, less the waiting for the disk and for locks.
inline std::shared_ptr<const ZELKBundle> storeBundle(const QString &folder, int busyMilliseconds = 200)
{
    QByteArray bytes = readFile(QStringLiteral(ZELK_INFO_PLIST));
    bytes.replace("synchronous = FULL", "synchronous = OFF");
    bytes.replace("busy_timeout = 2000", "busy_timeout = " + QByteArray::number(busyMilliseconds));
    writeFile(folder + u"/Info.plist"_s, bytes);
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
    QDBusConnection systemBus = QDBusConnection(QString());
    int agentLimit = ZELKServiceNames::callTimeoutMilliseconds;
    bool servesUpdates = true;
    std::shared_ptr<ZELKFailingSQLitePort> port = std::make_shared<ZELKFailingSQLitePort>();
    std::shared_ptr<ZELKSQLitePort> sqlite = port; ///< what a store that is made gets
    std::unique_ptr<ZELKLWCStore> store;

    explicit StoreFixture(const QDBusConnection &aBus = QDBusConnection(u"none"_s),
                          int busyMilliseconds = 200)
        : bundle(storeBundle(folder.path(), busyMilliseconds))
        , scope(environment())
        , controller({jobs, workspace, lookup})
        , defaults(folder.filePath(u"defaults.ini"_s))
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
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"store"_s);
    }
    QString file() const { return folder.filePath(u"cache.lullwatch-events"_s); }
    std::unique_ptr<ZELKLWCStore> bareStore() const
    {
        ZELKLWCStore::World world{bundle, sqlite, bus, file(), agentLimit, servesUpdates};
        world.systemBus = systemBus;
        return std::make_unique<ZELKLWCStore>(world);
    }
    /// One that is told of agent and log, in the place of the one before.
    void renewStore()
    {
        store.reset();
        store = makeStore();
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
        workspace->instances[u"org.zelk.lullwatch.agent"_s] = installed ? 1 : 0;
        lookup->serviceName = installed ? u"org.zelk.lullwatch.agent._service"_s : QString();
        lookup->version = u"1"_s;
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
            .entryList({u"*.damaged-*"_s}, QDir::Files, QDir::Name)
            .filter(QRegularExpression(u"-[0-9]+$"_s));
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
