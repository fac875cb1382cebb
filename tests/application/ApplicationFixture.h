#pragma once

#include "FakeAgentLookup.h"
#include "FakeServiceManagement.h"
#include "FakeWorkspace.h"
#include "ZELKAgentAlertDialog.h"
#include "ZELKApplicationWiring.h"
#include "ZELKEnvironment.h"
#include "ZELKNoAgent.h"
#include "ZELKSQLitePort.h"

#include <QPushButton>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

/// The real main bundle; Sunday, 2024-03-31, 10:00 in Berlin, the day on which summer time began.
inline ZELKEnvironment applicationEnvironment()
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.zone = QTimeZone("Europe/Berlin");
    environment.clock = std::make_shared<ZELKFixedClock>(
        ZELKDate::fromDateTime(QDateTime(QDate(2024, 3, 31), QTime(10, 0), environment.zone)));
    environment.locale = QLocale(QLocale::English, QLocale::UnitedKingdom);
    environment.mainBundle = std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath({}));
    return environment;
}

inline ZELKDate localDate(int year, int month, int day, int hour = 12, int minute = 0, int second = 0)
{
    return ZELKDate::fromDateTime(
        QDateTime(QDate(year, month, day), QTime(hour, minute, second), ZELKEnvironment::current().zone));
}

/// Settings and cache in a folder of the test's own, and an agent that does as the test says.
struct ApplicationFixture
{
    ZELKEnvironmentScope scope{applicationEnvironment()};
    QTemporaryDir folder;
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
    std::shared_ptr<FakeAgentLookup> lookup = std::make_shared<FakeAgentLookup>();
    ZELKApplicationWiring::World world{{std::make_shared<FakeServiceManagement>(), workspace, lookup},
                                       ZELKNoAgent::bus(),
                                       std::make_shared<ZELKSQLitePort>()};

    ApplicationFixture()
    {
        qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
        qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit());
    }
    ZELKApplicationSettings settings() const
    {
        return {ZELKEnvironment::current().mainBundle, {}, folder.filePath(u"cache"_s)};
    }
    ZELKApplicationSettings profile() const { return {ZELKEnvironment::current().mainBundle, u"test"_s, {}}; }
    void letAgentRun(bool runs)
    {
        const QString name = u"org.zelk.lullwatch.agent"_s;
        workspace->instances[name] = runs ? 1 : 0;
        lookup->serviceName = runs ? name + u"._service"_s : QString();
        lookup->version = u"1"_s;
    }
};

/// One event each day at noon, both days included.
inline QList<ZELKRawEvent> eventEachDay(QDate from, QDate to)
{
    QList<ZELKRawEvent> events;
    for (QDate day = from; day <= to; day = day.addDays(1))
        events.append(
            ZELKMakeRawEvent(localDate(day.year(), day.month(), day.day()), u"noon"_s, u"org.example"_s));
    return events;
}

/// Presses a button, counted from 0, of the sheet that stands on the window.
inline void answerSheet(const QWidget &window, int button)
{
    const auto *sheet = window.findChild<ZELKAgentAlertDialog *>();
    if (!sheet)
        qFatal("there is no sheet");
    sheet->findChildren<QPushButton *>(QString(), Qt::FindDirectChildrenOnly).at(button)->click();
}
