// The table on paper: how it is divided into pages, what stands where, and what others read in the PDF.
#include "ConsoleLines.h"
#include "Files.h"
#include "LargestFile.h"
#include "NamedRows.h"
#include "PrintFixture.h"
#include "Raised.h"
#include "ZELKReportColumn.h"

#include <QApplication>
#include <QImage>

using State = ZELKPrintOperation::State;

namespace {

/// Answers one text, and counts how often it is asked.
struct StubFormatter : ZELKFormatter
{
    ZELKAttributedString text;
    mutable int asked = 0;

    explicit StubFormatter(const QString &words, const ZELKTextAttributes &look = {})
        : text(words, look)
    {
    }
    QString stringForObjectValue(const QVariant &) const override { return text.string(); }
    ZELKAttributedString attributedStringForObjectValue(const QVariant &,
                                                        const ZELKTextAttributes &) const override
    {
        ++asked;
        return text;
    }
    bool getObjectValue(QVariant &, const QString &, QString *) const override { return false; }
};

bool canReadPdf()
{
    return !QStandardPaths::findExecutable(u"pdftotext"_s).isEmpty();
}

QImage white(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// On a white sheet with a dot a point.
QImage paint(const ZELKLWCPrintableReportView &report, const QRectF &area)
{
    QImage image = white(area.size().toSize());
    QPainter painter(&image);
    report.drawRect(painter, area);
    return image;
}

/// Where the words stand of a row with a column of that text and width, a second one that fills the table,
/// and one without a formatter.
QMap<QString, QRectF> printed(const QString &text, double width, Qt::Alignment alignment = Qt::AlignLeft,
                              const QString &identifier = u"event"_s)
{
    PrintFixture bed(1);
    const StubFormatter first(text);
    const StubFormatter second(u"second"_s);
    auto report = bed.report();
    report->setColumns({{identifier, {}, width, alignment, &first},
                        {u"event"_s, {}, 998.0 - width, Qt::AlignLeft, &second},
                        {u"date"_s, u"unformatted"_s, 0.0, Qt::AlignLeft, nullptr}});
    bed.print(std::move(report));
    return wordsOfFirstPage(bed.file());
}

QImage pictureOfFirstPage(const QString &file)
{
    readPdf(u"pdftoppm"_s, {u"-png"_s, u"-r"_s, u"150"_s, u"-l"_s, u"1"_s, u"-singlefile"_s, file, file});
    return QImage(file + u".png"_s).convertToFormat(QImage::Format_RGB32);
}

} // namespace

class TestPrint : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Header 40, headings and rows 12: of 700 points 54 rows are left 648, of 699 one less.
    void pagesAndPlaces_data()
    {
        NamedRows<double, qint64, qint64, qint64> row("printableHeight", "rows", "rowsPerPage", "pages");
        row("none", 700.0, 0, 54, 0);
        row("one", 700.0, 1, 54, 1);
        row("one page", 700.0, 54, 54, 1);
        row("one more", 700.0, 55, 54, 2);
        row("a row too high", 699.9, 54, 53, 2);
        row("many", 700.0, 100'000, 54, 1852);
        row("no room for a row", 30.0, 2, 1, 2);
    }
    void pagesAndPlaces()
    {
        QFETCH(double, printableHeight);
        QFETCH(qint64, rows);
        const ZELKReportLayout layout({{600.0, printableHeight + 90.0}, {70.0, 50.0, 30.0, 40.0}},
                                      {40.0, 12.0, 12.0}, rows);
        QTEST(layout.rowsPerPage, "rowsPerPage");
        QTEST(layout.pages, "pages");
        QCOMPARE(layout.printableArea, QRectF(70.0, 50.0, 500.0, printableHeight));
        qint64 next = 0;
        double top = layout.frame().height();
        for (qint64 page = 1; page <= layout.pages; ++page, top -= printableHeight + 90.0) {
            const QRectF sheet(0.0, top - printableHeight - 90.0, 600.0, printableHeight + 90.0);
            QCOMPARE(layout.rectForPage(page), sheet);
            const ZELKReportLayout::Pages touched = layout.pagesIn(sheet);
            QVERIFY(touched.first == page && touched.last == page);
            QCOMPARE(layout.pageHeaderY(page), top - 50.0 - 40.0);
            QCOMPARE(layout.columnHeadingsY(page), top - 50.0 - 52.0);
            QCOMPARE(layout.rowY(next), top - 50.0 - 55.0);
            QVERIFY(layout.rowsOnPage(page) > 0);
            next += layout.rowsOnPage(page);
            QCOMPARE(layout.rowY(next - 1), top - 50.0 - 55.0 - 12.0 * double(layout.rowsOnPage(page) - 1));
        }
        QCOMPARE(next, rows);
        QCOMPARE(top, 0.0);
    }

    void eachRowIsPrintedOnce_data()
    {
        NamedRows<QPageSize::PageSizeId, QPageLayout::Orientation, int, int, const char *> row(
            "paper", "orientation", "pages", "more", "width"); // so many full pages, and so many rows more
        row("A4", QPageSize::A4, QPageLayout::Portrait, 2, 0, "595");
        row("A4 landscape", QPageSize::A4, QPageLayout::Landscape, 0, 1, "842");
        row("Letter", QPageSize::Letter, QPageLayout::Portrait, 100, 5, "612");
        row("Letter landscape", QPageSize::Letter, QPageLayout::Landscape, 2, 1, "792");
    }
    void eachRowIsPrintedOnce()
    {
        if (!canReadPdf())
            QSKIP("needs poppler-utils");
        QFETCH(int, pages);
        QFETCH(int, more);
        QFETCH(QPageSize::PageSizeId, paper);
        QFETCH(QPageLayout::Orientation, orientation);
        const qint64 onPage = PrintFixture(1, paper, orientation).report()->layout().rowsPerPage;
        PrintFixture bed(pages * int(onPage) + more, paper, orientation);
        auto report = bed.report();
        const qint64 all = pages + (more > 0 ? 1 : 0);
        QCOMPARE(report->knowsPageRange().location, 1);
        QCOMPARE(report->knowsPageRange().length, all);
        QCOMPARE(bed.print(std::move(report)), State::Done);
        const QString about = readPdf(u"pdfinfo"_s, {bed.file()});
        QVERIFY(QRegularExpression(u"Title: *Lullwatch\n"_s).match(about).hasMatch());
        QFETCH(QString, width);
        QVERIFY2(about.contains(width + u" x"_s), qPrintable(about));
        const QList<QStringList> printed = linesOfPages(bed.file());
        QCOMPARE(printed.size(), all);
        int next = 0;
        for (const QStringList &lines : printed) {
            QVERIFY(lines.at(0).startsWith(u"Five days"_s));
            QVERIFY(lines.at(0).endsWith(u"Page %1 of %2"_s.arg(next / onPage + 1).arg(all)));
            QCOMPARE(lines.at(1).simplified(), u"Date Summary"_s);
            for (const QString &line : lines.sliced(2))
                QVERIFY2(line.endsWith(u" row %1"_s.arg(next++)), qPrintable(line));
            QVERIFY(next % onPage == 0 || next == bed.log.count());
        }
        QCOMPARE(next, bed.log.count());
    }

    void withoutRowsNothingIsPrinted()
    {
        PrintFixture bed(0);
        QCOMPARE(bed.report()->pages(), 0);
        QCOMPARE(bed.print(bed.report()), State::Done);
        QVERIFY(!QFile::exists(bed.file()));
    }

    /// Margins that leave nothing: a row a page, none of which can be seen.
    void aSheetCanBeTooSmall()
    {
        PrintFixture bed(3);
        const ZELKLWCPrintableReportView report(&bed.view, &bed.model(), u"title"_s,
                                                {{20.0, 20.0}, {15.0, 15.0, 15.0, 15.0}});
        QCOMPARE(report.pages(), 3);
        QCOMPARE(paint(report, report.rectForPage(3)), white({20, 20}));
    }

    void theResolutionChangesNothing()
    {
        if (!canReadPdf())
            QSKIP("needs poppler-utils");
        PrintFixture bed(80);
        QImage first;
        for (const int resolution : {1200, 600, 72}) {
            bed.printer.setResolution(resolution);
            QCOMPARE(bed.print(bed.report()), State::Done);
            const QImage image = pictureOfFirstPage(bed.file());
            first = first.isNull() ? image : first;
            QCOMPARE(image.size(), first.size());
            int different = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    different += std::abs(qGray(image.pixel(x, y)) - qGray(first.pixel(x, y))) > 64;
            QVERIFY2(different < 200, qPrintable(QString::number(different)));
        }
    }

    /// The first of two columns; the report is 451 points wide and begins at 72.
    void cellsOfARow()
    {
        if (!canReadPdf())
            QSKIP("needs poppler-utils");
        const double half = 72.0 + 451.0 / 2.004;
        const auto isAt = [](double place, double expected) { return std::abs(place - expected) < 1.0; };
        auto words = printed(u"left"_s, 499.0);
        QVERIFY(isAt(words[u"left"_s].left(), 72.0) && isAt(words[u"second"_s].left(), half));
        QVERIFY(isAt(printed(u"left"_s, 1.0)[u"second"_s].left(), 72.0 + 451.0 * 0.3)); // narrow as it is
        words = printed(u"one\ntwo"_s, 499.0);
        QVERIFY(words.contains(u"one"_s) && !words.contains(u"two"_s));
        QVERIFY(isAt(printed(u"right"_s, 499.0, Qt::AlignRight)[u"right"_s].right(), half - 3.0));
        words = printed(u"a"_s + QString(5000, u'b'), 499.0);
        const auto cut = words.lowerBound(u"ab"_s);
        QVERIFY(cut.key().startsWith(u"ab"_s) && cut.key().endsWith(u"…"_s) && cut->right() < half - 2.9);
        const ConsoleLines lines;
        words = printed(u"left"_s, 499.0, Qt::AlignLeft, {});
        QVERIFY(!words.contains(u"left"_s) && isAt(words[u"second"_s].left(), half));
        QCOMPARE(lines.lines(), QStringList(u"Error column does not have an identifier set!"_s));
    }

    /// In a dark window, with a template made for that.
    void paperIsWhiteAndTextsAreDark()
    {
        const QPalette usual = QApplication::palette();
        QPalette dark(QColor(30, 30, 30));
        dark.setColor(QPalette::Text, Qt::white);
        dark.setColor(QPalette::WindowText, Qt::white);
        QApplication::setPalette(dark);
        PrintFixture bed(1);
        ZELKTextAttributes yellow;
        yellow.colour = ZELKTextColour::rgb(255, 255, 128);
        const StubFormatter light(u"████████"_s, yellow);
        auto report = bed.report(u"████"_s);
        const StubFormatter pile(u"a"_s + QString(900, QChar(0x0301)));
        report->setColumns({{u"event"_s, u"████"_s, 100.0, Qt::AlignLeft, &light},
                            {u"event"_s, {}, 100.0, Qt::AlignLeft, &pile}});
        const QImage image = paint(*report, report->rectForPage(1));
        QApplication::setPalette(usual);
        const double rowMiddle = 842.0 - report->layout().rowY(0) - report->layout().heights.row / 2.0;
        const auto at = [&image](double x, double y) { return QColor(image.pixel(qRound(x), qRound(y))); };
        QCOMPARE(at(5.0, 5.0), QColor(Qt::white));
        QCOMPARE(at(80.0, 54.0 + 10.0), QColor(Qt::black)); // the title
        const double rule = 842.0 - report->layout().rowY(0);
        const int ruleLight = std::min(at(500.0, rule).lightness(), at(500.0, rule - 1.0).lightness());
        QVERIFY(ruleLight < 255 && ruleLight >= QColor(Qt::lightGray).lightness());
        QVERIFY(at(90.0, rowMiddle).lightness() < 100);
        QVERIFY(at(90.0, rowMiddle).hsvSaturation() > 50); // still yellow
        const QImage above = image.copy(280, 0, 60, qRound(rowMiddle - report->layout().heights.row));
        QCOMPARE(above, white(above.size())); // marks stay in their row
    }

    void aPageCostsItsOwnRowsAlone()
    {
        PrintFixture bed(20'000);
        const StubFormatter counted(u"text"_s);
        auto report = bed.report();
        report->setColumns({{u"event"_s, u"Event"_s, 100.0, Qt::AlignLeft, &counted}});
        paint(*report, report->rectForPage(report->pages()));
        QCOMPARE(counted.asked, report->layout().rowsOnPage(report->pages()));
        QRectF lowerHalf = report->rectForPage(1);
        lowerHalf.setHeight(lowerHalf.height() / 2.0);
        counted.asked = 0;
        paint(*report, lowerHalf);
        QVERIFY(counted.asked > 0 && counted.asked < report->layout().rowsPerPage * 2 / 3);
    }

    void whatIsMissingRaises()
    {
        PrintFixture bed(1);
        const auto make = [&](bool view, bool data, const QString &title) {
            return raisedAt([&] {
                ZELKLWCPrintableReportView(view ? &bed.view : nullptr, data ? &bed.model() : nullptr, title,
                                           {{595.0, 842.0}, {}});
            });
        };
        const QString file = u"client/ZELKLWCPrintableReportView:"_s;
        const QString parameter = u" Invalid parameter not satisfying: "_s;
        QCOMPARE(make(false, true, u""_s), file + u"22"_s + parameter + u"inTableView"_s);
        QCOMPARE(make(true, false, u""_s), file + u"23"_s + parameter + u"inDataController"_s);
        QCOMPARE(make(true, true, {}), file + u"24"_s + parameter + u"inTitle"_s);
        QCOMPARE(make(true, true, u""_s), QString());
        ZELKEnvironment empty = ZELKEnvironment::current();
        empty.mainBundle = std::make_shared<ZELKBundle>();
        const ZELKEnvironmentScope scope(empty);
        QCOMPARE(make(true, true, u""_s), file + u"34 Unable to load ZELKLWCPrintableReportView nib."_s);
    }

    void pagesInOrder_data()
    {
        NamedRows<ZELKPageSequence, QList<qint64>> row("sequence", "numbers");
        row("none", {0}, {});
        row("beyond the end", {5, 4, 9}, {4, 5});
        row("two copies", {2, 0, 0, 2}, {1, 2, 1, 2});
        row("not collated", {2, 0, 0, 2, false}, {1, 1, 2, 2});
        row("last first", {4, 1, 3, 2, true, true}, {3, 2, 1, 3, 2, 1});
    }
    void pagesInOrder()
    {
        QFETCH(ZELKPageSequence, sequence);
        QTEST(sequence.pageNumbers(), "numbers");
    }

    void aFileIsWholeOrAsItWas()
    {
        if (!canReadPdf())
            QSKIP("needs poppler-utils");
        PrintFixture bed(2000);
        writeFile(bed.file(), "older");
        {
            ZELKPrintOperation cancelled(bed.report(), bed.printer);
            while (cancelled.fraction() == 0.0)
                QCOMPARE(cancelled.advance(0), State::Producing);
        }
        QCOMPARE(readFile(bed.file()), QByteArray("older"));
        QCOMPARE(bed.printer.outputFileName(), bed.file());
        bed.printer.setPrintRange(QPrinter::PageRange);
        bed.printer.setFromTo(2, 3);
        QCOMPARE(bed.print(bed.report()), State::Done);
        QCOMPARE(linesOfPages(bed.file()).size(), 2);
        bed.printer.setOutputFileName(bed.folder.filePath(u"nowhere/report.pdf"_s));
        ZELKPrintOperation failing(bed.report(), bed.printer);
        QCOMPARE(failing.advance(0), State::Failed); // before a page is printed
        QCOMPARE(failing.error(), u"No such file or directory"_s);
        bed.printer.setOutputFileName(bed.file());
        for (const qint64 room : {50'000LL, QFileInfo(bed.file()).size() - 1}) {
            bed.printer.setPrintRange(room == 50'000 ? QPrinter::AllPages : QPrinter::PageRange);
            const LargestFile limit{rlim_t(room)};
            ZELKPrintOperation half(bed.report(), bed.printer);
            QCOMPARE(half.advance(100'000), State::Failed);
            QCOMPARE(half.error(), u"File too large"_s);
        }
        QCOMPARE(linesOfPages(bed.file()).size(), 2);
    }
};

QTEST_MAIN(TestPrint)
#include "tst_print.moc"
