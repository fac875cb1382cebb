#include "NamedRows.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogTableModel.h"
#include "ZELKShortDate.h"
#include "ZELKUserDefaults.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr double day = 86400.0;
// 2024-03-05 00:00:00 UTC
constexpr double start = 731289600.0;

ZELKEnvironment environment()
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.clock = std::make_shared<ZELKFixedClock>(ZELKDate(start + 50.5 * day));
    environment.zone = QTimeZone::utc();
    environment.locale = QLocale(QLocale::English, QLocale::UnitedKingdom);
    environment.mainBundle = std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath({}), u"en"_s);
    return environment;
}

/// A log on a date range, shown whole.
struct Fixture
{
    ZELKEnvironmentScope scope{environment()};
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(u"defaults.ini"_s)};
    ZELKLWCDateRangeController range{defaults};
    ZELKLWCLog log;
    double next = start;

    Fixture()
    {
        range.awakeFromNib();
        log.setDateRange(&range);
        log.awakeFromNib();
        range.setSelectionTag(8);
    }
    /// Four events a day.
    void grow(int count)
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < count; ++i, next += day / 4)
            events.append(ZELKMakeRawEvent(ZELKDate(next), u"event %1"_s.arg(next), u"org.example"_s));
        log.addExternalEntries(events);
    }
    void show(int firstDay, int days)
    {
        range.setAbsoluteDuration(
            std::make_shared<ZELKLWCAbsoluteDuration>(ZELKDate(start + firstDay * day), days * day - 1.0));
    }
};

/// The rows' summaries as a view keeps them, by the model's signals alone, and the story of those signals.
class Mirror : public QObject
{
public:
    explicit Mirror(const ZELKLWCLogTableModel &model)
    {
        const auto summary = [&model](int row) {
            return model.index(row, ZELKLWCLogTableModel::SummaryColumn).data().toString();
        };
        for (int row = 0; row < model.rowCount(); ++row)
            rows.append(summary(row));
        connect(&model, &QAbstractItemModel::rowsInserted, this, [=, this](const auto &, int from, int to) {
            story.append(u"+%1-%2"_s.arg(from).arg(to));
            for (int row = from; row <= to; ++row)
                rows.insert(row, summary(row));
        });
        connect(&model, &QAbstractItemModel::rowsRemoved, this, [this](const auto &, int from, int to) {
            story.append(u"-%1-%2"_s.arg(from).arg(to));
            rows.remove(from, to - from + 1);
        });
    }
    QStringList rows;
    QStringList story;
};

} // namespace

class TableModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsAnyWalk()
    {
        Fixture fixture;
        ZELKLWCLogTableModel model(fixture.log);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        Mirror mirror(model);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QRandomGenerator random(20240305);
        for (int step = 0; step < 400; ++step) {
            if (random.bounded(4) == 0)
                fixture.grow(random.bounded(1, 8));
            else if (random.bounded(10) == 0)
                fixture.range.setSelectionTag(8);
            else
                fixture.show(random.bounded(-5, 60), random.bounded(1, 30));
            QStringList visible;
            for (const ZELKLWCLogEntry *entry : fixture.log.visibleEntriesArray())
                visible.append(entry->summary());
            QCOMPARE(mirror.rows, visible);
            QCOMPARE(model.rowCount(), visible.size());
        }
        QCOMPARE(resets.count(), 0);
    }

    void keepsRowsThatStay_data()
    {
        const NamedRows<int, int, const char *> row("firstDay", "days", "story");
        row("grows behind", 10, 8, "+20-31");
        row("grows before", 7, 8, "+0-11");
        row("shrinks behind", 10, 3, "-12-19");
        row("shrinks before", 12, 3, "-0-7");
        row("moves on", 12, 5, "-0-7 +12-19");
        row("moves back", 8, 5, "-12-19 +0-7");
        row("grows both ways", 9, 7, "+0-3 +24-27");
        row("next to it", 15, 2, "-0-19 +0-7");
        row("stays", 10, 5, "");
    }

    void keepsRowsThatStay()
    {
        QFETCH(int, firstDay);
        QFETCH(int, days);
        Fixture fixture;
        fixture.grow(160);
        fixture.show(10, 5);
        ZELKLWCLogTableModel model(fixture.log);
        Mirror mirror(model);
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        fixture.show(firstDay, days);
        fixture.log.updateVisibleEntries();
        QTEST(mirror.story.join(u' '), "story");
        QCOMPARE(changed.count(), 0);
    }

    void cells()
    {
        Fixture fixture;
        fixture.grow(2);
        const ZELKLWCLogTableModel model(fixture.log);
        QCOMPARE(model.index(1, ZELKLWCLogTableModel::DateColumn).data(), QVariant(u"05/03/2024 06:00:00"_s));
        QCOMPARE(model.entryAtRow(1), fixture.log.objectAtIndex(1));
        QVERIFY(!model.entryAtRow(2) && !model.entryAtRow(-1));
        QCOMPARE(model.headerData(0, Qt::Horizontal, Qt::DisplayRole), QVariant(u"Date"_s));
        QCOMPARE(model.headerData(1, Qt::Horizontal, Qt::DisplayRole), QVariant(u"Summary"_s));
    }

    void timeFormats_data()
    {
        const NamedRows<QLocale, const char *> row("locale", "text");
        row("C has seconds", QLocale::c(), "14:02:11");
        row("American", QLocale(QLocale::English), "2:02:11 PM");
        row("Finnish divides by points", QLocale(QLocale::Finnish), "14.02.11");
    }

    void timeFormats()
    {
        QFETCH(QLocale, locale);
        QString text = locale.toString(QTime(14, 2, 11), ZELKShortDate::timeFormat(locale));
        QTEST(text.replace(QChar(0x202F), u' ').replace(QChar(0xA0), u' '), "text");
    }
};

QTEST_GUILESS_MAIN(TableModelTest)
#include "tst_model.moc"
