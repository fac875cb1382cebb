#include "NamedRows.h"
#include "TableFixture.h"
#include "ZELKLWCLogTableModel.h"
#include "ZELKShortDate.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

namespace {

/// The rows' entries as a view keeps them, by the model's signals alone, and the story of those signals.
class Mirror : public QObject
{
public:
    explicit Mirror(const ZELKLWCLogTableModel &model)
    {
        const auto take = [this, &model] {
            rows.clear();
            for (int row = 0; row < model.rowCount(); ++row)
                rows.append(model.entryAtRow(row));
        };
        take();
        connect(&model, &QAbstractItemModel::modelReset, this, [this, take] {
            story.append(u"reset"_s);
            take();
        });
        connect(&model, &QAbstractItemModel::rowsInserted, this, [&, this](const auto &, int from, int to) {
            story.append(u"+%1-%2"_s.arg(from).arg(to));
            for (int row = from; row <= to; ++row)
                rows.insert(row, model.entryAtRow(row));
        });
        connect(&model, &QAbstractItemModel::rowsRemoved, this, [this](const auto &, int from, int to) {
            story.append(u"-%1-%2"_s.arg(from).arg(to));
            rows.remove(from, to - from + 1);
        });
    }
    QList<ZELKLWCLogEntry *> rows;
    QStringList story;
};

/// What the rows should be, the slow way.
QList<ZELKLWCLogEntry *> expectedRows(const ZELKLWCLog &log, const QString &filter,
                                      const ZELKSortDescriptors &descriptors)
{
    QList<ZELKLWCLogEntry *> rows;
    for (ZELKLWCLogEntry *entry : log.visibleEntriesArray())
        if (entry->summary().contains(filter, Qt::CaseSensitive))
            rows.append(entry);
    std::stable_sort(rows.begin(), rows.end(), [&](const ZELKLWCLogEntry *a, const ZELKLWCLogEntry *b) {
        for (const ZELKSortDescriptor &descriptor : descriptors) {
            if (!descriptor.ascending)
                std::swap(a, b);
            if (descriptor.key == "date"_L1 ? a->date() < b->date() : a->summary() < b->summary())
                return true;
            if (descriptor.key == "date"_L1 ? b->date() < a->date() : b->summary() < a->summary())
                return false;
            if (!descriptor.ascending)
                std::swap(a, b);
        }
        return false;
    });
    return rows;
}

ZELKSortDescriptors descriptorsOf(const QString &text)
{
    ZELKSortDescriptors descriptors;
    for (const QString &part : text.split(u' ', Qt::SkipEmptyParts))
        descriptors.append({part.mid(1) == "d"_L1 ? u"date"_s : u"summary"_s, part.startsWith(u'+')});
    return descriptors;
}

} // namespace

class TableModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsAnyWalk_data()
    {
        const NamedRows<const char *, const char *, bool> row("sort", "filter", "isLateAllowed");
        row("log's order", "", "", true);
        row("filtered", "", "Power", true);
        row("date falls", "-d", "", false);
        row("date falls, late events", "-d", "", true);
        row("date rises, late events", "+d", "ü", true);
        row("summary rises", "+s", "", false);
        row("summary falls", "-s", "ower", true);
        row("date falls, then summary rises", "-d +s", "", false);
        row("date rises, then summary falls", "+d -s", "p", true);
        row("summary rises, then date falls", "+s -d", "", false);
        row("summary falls, then date falls", "-s -d", "", false);
        row("summary falls, then date rises, late", "-s +d +s", "", true);
    }

    /// However range, entries, filter and order change: the rows are the right ones, and the view was told.
    void followsAnyWalk()
    {
        QFETCH(QString, sort);
        QFETCH(QString, filter);
        QFETCH(bool, isLateAllowed);
        TableFixture fixture;
        QRandomGenerator random(20240305);
        fixture.growUnevenly(3000, random, isLateAllowed); // more than what is sorted one by one
        ZELKLWCLogTableModel model(fixture.log);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        Mirror mirror(model);
        ZELKSortDescriptors descriptors = descriptorsOf(sort);
        for (int step = 0; step < 150; ++step) {
            if (step % 50 == 0) {
                model.setFilterString(step == 50 ? QString() : filter);
                model.setSortDescriptors(descriptors);
                fixture.range.setSelectionTag(8);
                mirror.story.clear();
            } else if (random.bounded(4) > 0) {
                fixture.growUnevenly(random.bounded(1, 8), random, isLateAllowed);
            } else {
                fixture.show(random.bounded(-5, 600), random.bounded(1, 600));
            }
            QCOMPARE(mirror.rows, expectedRows(fixture.log, model.filterString(), descriptors));
            for (int row = 0; row < model.rowCount(); row += 7)
                QCOMPARE(model.rowOfEntry(model.entryAtRow(row)), std::optional(row));
        }
        QVERIFY(!mirror.story.contains(u"reset"_s));
    }

    /// Entries that come between very many others, or leave them, are laid out anew at once.
    void manyPlacesAreOneReset()
    {
        TableFixture fixture;
        ZELKLWCLogTableModel model(fixture.log);
        model.setSortDescriptors(descriptorsOf(u"+s"_s));
        Mirror mirror(model);
        for (const int odd : {0, 1}) {
            QList<ZELKRawEvent> events;
            for (int i = 0; i < 1500; ++i)
                events.append(ZELKMakeRawEvent(ZELKDate(fixture.next += 60.0),
                                               QString::number(100'000 + 2 * i + odd), u"m"_s));
            fixture.log.addExternalEntries(events);
            QCOMPARE(mirror.rows, expectedRows(fixture.log, {}, model.sortDescriptors()));
        }
        // All days but the first: of each two neighbours one leaves.
        fixture.show(1, 5);
        QCOMPARE(mirror.rows, expectedRows(fixture.log, {}, model.sortDescriptors()));
        QCOMPARE(mirror.story.join(u' '), u"+0-1499 reset reset"_s);
    }

    void rowsOfEntriesThatAreNotShown()
    {
        TableFixture fixture;
        fixture.grow(40);
        fixture.show(2, 5);
        ZELKLWCLogTableModel model(fixture.log);
        QVERIFY(!model.rowOfEntry(fixture.log.objectAtIndex(7)));
        QVERIFY(!model.rowOfEntry(nullptr));
        model.setFilterString(fixture.log.objectAtIndex(9)->summary());
        QCOMPARE(model.rowOfEntry(fixture.log.objectAtIndex(9)), std::optional(0));
        QVERIFY(!model.rowOfEntry(fixture.log.objectAtIndex(10)));
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
        row("grows both ways", 9, 7, "+20-23 +0-3");
        row("next to it", 15, 2, "-0-19 +0-7");
        row("stays", 10, 5, "");
    }

    void keepsRowsThatStay()
    {
        QFETCH(int, firstDay);
        QFETCH(int, days);
        TableFixture fixture;
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
        TableFixture fixture;
        fixture.grow(2);
        const ZELKLWCLogTableModel model(fixture.log);
        QCOMPARE(model.index(1, ZELKLWCLogTableModel::DateColumn).data(), QVariant(u"05/03/2024 06:00:00"_s));
        QCOMPARE(model.entryAtRow(1), fixture.log.objectAtIndex(1));
        QVERIFY(!model.entryAtRow(2) && !model.entryAtRow(-1));
        QCOMPARE(model.headerData(0, Qt::Horizontal, Qt::DisplayRole), QVariant(u"Date"_s));
        QCOMPARE(model.headerData(1, Qt::Horizontal, Qt::DisplayRole), QVariant(u"Summary"_s));
    }

    void timesHaveSeconds()
    {
        const std::pair<QLocale, QString> times[] = {{QLocale::c(), u"14:02:11"_s},
                                                     {QLocale::English, u"2:02:11 PM"_s},
                                                     {QLocale::Finnish, u"14.02.11"_s}};
        for (const auto &[locale, text] : times) {
            QString shown = locale.toString(QTime(14, 2, 11), ZELKShortDate::timeFormat(locale));
            QCOMPARE(shown.replace(QChar(0x202F), u' ').replace(QChar(0xA0), u' '), text);
        }
    }
};

QTEST_GUILESS_MAIN(TableModelTest)
#include "tst_model.moc"
