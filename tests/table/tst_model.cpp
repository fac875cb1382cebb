#include "ZELKBundle.h"
#include "ZELKCalendar.h"
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
#include <QTest>

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
    environment.mainBundle =
        std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath({}), QStringLiteral("en"));
    return environment;
}

/// A log on a date range, and what a view would know of it: the model's rows, kept by its signals alone.
struct Fixture
{
    ZELKEnvironmentScope scope{environment()};
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(QStringLiteral("defaults.ini"))};
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
    void grow(int count, double step = day / 4)
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < count; ++i, next += step)
            events.append(ZELKMakeRawEvent(ZELKDate(next), QStringLiteral("event %1").arg(next),
                                           QStringLiteral("org.example")));
        log.addExternalEntries(events);
    }
    void show(int firstDay, int days)
    {
        range.setAbsoluteDuration(
            std::make_shared<ZELKLWCAbsoluteDuration>(ZELKDate(start + firstDay * day), days * day - 1.0));
    }
};

class Mirror : public QObject
{
public:
    explicit Mirror(const ZELKLWCLogTableModel &model)
        : m_model(model)
    {
        for (int row = 0; row < model.rowCount(); ++row)
            rows.append(text(row));
        connect(&model, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex &, int from, int to) {
                    for (int row = from; row <= to; ++row)
                        rows.insert(row, text(row));
                });
        connect(&model, &QAbstractItemModel::rowsRemoved, this,
                [this](const QModelIndex &, int from, int to) { rows.remove(from, to - from + 1); });
    }
    QStringList rows;

private:
    QString text(int row) const
    {
        return m_model.index(row, ZELKLWCLogTableModel::SummaryColumn).data().toString();
    }
    const ZELKLWCLogTableModel &m_model;
};

QStringList visible(const ZELKLWCLog &log)
{
    QStringList texts;
    for (const ZELKLWCLogEntry *entry : log.visibleEntriesArray())
        texts.append(entry->summary());
    return texts;
}

class TableModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsAnyWalk();
    void keepsRowsThatStay_data();
    void keepsRowsThatStay();
    void tellsNothingWhenNothingChanged();
    void cells();
    void timeFormats_data();
    void timeFormats();
};

void TableModelTest::followsAnyWalk()
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
        QCOMPARE(mirror.rows, visible(fixture.log));
        QCOMPARE(model.rowCount(), int(fixture.log.countOfVisibleEntries()));
    }
    QCOMPARE(resets.count(), 0);
}

void TableModelTest::keepsRowsThatStay_data()
{
    QTest::addColumn<int>("firstDay");
    QTest::addColumn<int>("days");
    QTest::addColumn<QString>("story");

    QTest::newRow("grows behind") << 10 << 8 << QStringLiteral("+20-31");
    QTest::newRow("grows before") << 7 << 8 << QStringLiteral("+0-11");
    QTest::newRow("shrinks behind") << 10 << 3 << QStringLiteral("-12-19");
    QTest::newRow("shrinks before") << 12 << 3 << QStringLiteral("-0-7");
    QTest::newRow("moves on") << 12 << 5 << QStringLiteral("-0-7 +12-19");
    QTest::newRow("moves back") << 8 << 5 << QStringLiteral("-12-19 +0-7");
    QTest::newRow("grows both ways") << 9 << 7 << QStringLiteral("+0-3 +24-27");
    QTest::newRow("elsewhere") << 20 << 2 << QStringLiteral("-0-19 +0-7");
    QTest::newRow("next to it") << 15 << 2 << QStringLiteral("-0-19 +0-7");
}

void TableModelTest::keepsRowsThatStay()
{
    QFETCH(int, firstDay);
    QFETCH(int, days);
    Fixture fixture;
    fixture.grow(160);
    fixture.show(10, 5);
    ZELKLWCLogTableModel model(fixture.log);
    QStringList story;
    const auto tell = [&story](QLatin1Char sign) {
        return [&story, sign](const QModelIndex &, int from, int to) {
            story.append(QStringLiteral("%1%2-%3").arg(sign).arg(from).arg(to));
        };
    };
    connect(&model, &QAbstractItemModel::rowsInserted, this, tell(QLatin1Char('+')));
    connect(&model, &QAbstractItemModel::rowsRemoved, this, tell(QLatin1Char('-')));
    fixture.show(firstDay, days);
    QTEST(story.join(QLatin1Char(' ')), "story");
}

void TableModelTest::tellsNothingWhenNothingChanged()
{
    Fixture fixture;
    fixture.grow(40);
    ZELKLWCLogTableModel model(fixture.log);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    fixture.log.updateVisibleEntries();
    QCOMPARE(inserted.count() + removed.count() + changed.count(), 0);
}

void TableModelTest::cells()
{
    Fixture fixture;
    fixture.grow(2);
    ZELKLWCLogTableModel model(fixture.log);
    QCOMPARE(model.index(1, ZELKLWCLogTableModel::DateColumn).data().toString(),
             QStringLiteral("05/03/2024 06:00:00"));
    QCOMPARE(model.index(1, ZELKLWCLogTableModel::SummaryColumn).data().toString(),
             fixture.log.objectAtIndex(1)->summary());
    QCOMPARE(model.entryAtRow(1), fixture.log.objectAtIndex(1));
    QCOMPARE(model.entryAtRow(2), nullptr);
    QCOMPARE(model.entryAtRow(-1), nullptr);
    QCOMPARE(model.headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("Date"));
    QCOMPARE(model.headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("Summary"));
}

void TableModelTest::timeFormats_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");
    QTest::newRow("C has seconds") << QLocale::c() << QStringLiteral("14:02:11");
    QTest::newRow("German") << QLocale(QLocale::German) << QStringLiteral("14:02:11");
    QTest::newRow("American") << QLocale(QLocale::English) << QStringLiteral("2:02:11 PM");
    QTest::newRow("Finnish divides by points") << QLocale(QLocale::Finnish) << QStringLiteral("14.02.11");
}

void TableModelTest::timeFormats()
{
    QFETCH(QLocale, locale);
    QString text = locale.toString(QTime(14, 2, 11), ZELKShortDate::timeFormat(locale));
    QTEST(text.replace(QChar(0x202F), QLatin1Char(' ')).replace(QChar(0xA0), QLatin1Char(' ')), "text");
}

} // namespace

QTEST_GUILESS_MAIN(TableModelTest)

#include "tst_model.moc"
