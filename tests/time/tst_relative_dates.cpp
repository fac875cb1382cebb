// Dates as text, and the names of the days around today.
#include "DateRangeBed.h"
#include "NamedRows.h"
#include "ZELKLWCRelativeDateFormatter.h"

using namespace Qt::StringLiterals;

namespace {

/// A formatter at 14:00 on 30 March 2024 in Berlin; that night the clocks go forward.
struct Bed
{
    Bed()
    {
        local.setNow("2024-03-30 14:00:00");
        formatter.awakeFromNib();
    }
    void setRelative(bool relative) { defaults.setValue(u"relativeDates"_s, relative); }
    QString text(const QVariant &object) const { return formatter.stringForObjectValue(object); }

    LocalTime local;
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(u"settings.ini"_s)};
    ZELKLWCRelativeDateFormatter formatter{defaults};
};

} // namespace

class TestRelativeDates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names_data()
    {
        const NamedRows<const char *> row("text");
        row("2024-03-30 00:00:00", "Today, 00:00:00");
        row("2024-03-30 23:59:59", "Today, 23:59:59");
        row("2024-03-29 23:59:59", "Yesterday, 23:59:59");
        row("2024-03-31 00:00:00", "Tomorrow, 00:00:00");
        row("2024-03-31 23:30:00", "Tomorrow, 23:30:00"); // at the end of 23 hours
        row("2024-03-28 23:59:59", "28 Mar 2024, 23:59:59");
        row("2024-04-01 00:00:00", "1 Apr 2024, 00:00:00");
    }

    void names()
    {
        Bed bed;
        bed.setRelative(true);
        QTEST(bed.text(QVariant::fromValue(LocalTime::date(QTest::currentDataTag()))), "text");
    }

    void followsTheSetting()
    {
        Bed bed;
        const QVariant now = QVariant::fromValue(LocalTime::date("2024-03-30 12:00:00"));
        QCOMPARE(bed.text(now), u"30 Mar 2024, 12:00:00"_s);
        bed.setRelative(true);
        QCOMPARE(bed.text(now), u"Today, 12:00:00"_s);
        bed.local.setNow("2024-03-31 00:00:01");
        QCOMPARE(bed.text(now), u"Yesterday, 12:00:00"_s);
        bed.setRelative(false);
        QCOMPARE(bed.text(now), u"30 Mar 2024, 12:00:00"_s);
    }

    void aCalendarDateHasItsOwnDay()
    {
        Bed bed;
        bed.setRelative(true);
        const QDateTime inTokyo(QDate(2024, 3, 31), QTime(1, 0), QTimeZone("Asia/Tokyo"));
        QCOMPARE(bed.text(inTokyo), u"Tomorrow, 17:00:00"_s); // which it is there, and 17:00 here
    }

    void writesDatesAlone()
    {
        Bed bed;
        for (const QVariant &other :
             {QVariant(), QVariant(7), QVariant(u"2024-03-30"_s), QVariant(QDateTime())})
            QCOMPARE(bed.text(other), u""_s);
        QVariant object;
        QString error;
        QVERIFY(!bed.formatter.getObjectValue(object, u"Today"_s, &error));
        QCOMPARE(error, u"Unsupported conversion from string to object."_s);
        QVERIFY(!bed.formatter.getObjectValue(object, u"Today"_s, nullptr));
    }

    void capitalisesDatesToo()
    {
        Bed bed;
        ZELKEnvironment environment = ZELKEnvironment::current();
        environment.locale = QLocale(QLocale::Bulgarian);
        const ZELKEnvironmentScope scope(environment);
        const QVariant date = QVariant::fromValue(LocalTime::date("2024-04-01"));
        QVERIFY(bed.text(date).startsWith(u"1.04.24 г., 0:00"_s));
        bed.setRelative(true);
        QVERIFY(bed.text(date).startsWith(u"1.04.24 Г., 0:00"_s));
    }

    void looksLikeALabel()
    {
        Bed bed;
        ZELKTextAttributes given;
        given.colour = ZELKTextColour::rgb(255, 0, 0);
        given.paragraph.leftIndent = 3.0;
        const auto look = [&] {
            return bed.formatter.attributedStringForObjectValue(QVariant::fromValue(ZELKDate(0)), given)
                .attributesAt(0);
        };
        QCOMPARE(look().pointSize, 10.0); // no window system here
        QCOMPARE(look().colour, ZELKTextColour::of(ZELKTextColour::Role::ControlText));
        QCOMPARE(look().paragraph.lineBreak, ZELKParagraphStyle::LineBreak::TruncateTail);
        QCOMPARE(look().paragraph.leftIndent, 0.0);
        given.family = u"Own"_s;
        given.pointSize = 7.0;
        QCOMPARE(look().family + QString::number(look().pointSize), u"Own7"_s);
    }
};

QTEST_GUILESS_MAIN(TestRelativeDates)
#include "tst_relative_dates.moc"
