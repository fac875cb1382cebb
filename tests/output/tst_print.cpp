// The table on paper: how it is divided into pages, what stands where, and what others read in the PDF.
#include "ConsoleLines.h"
#include "Files.h"
#include "LargestFile.h"
#include "NamedRows.h"
#include "PrintFixture.h"
#include "ZELKAssertion.h"
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

QList<int> rowsIn(const QStringList &lines)
{
    static const QRegularExpression form(u"\\brow (\\d+)$"_s);
    QList<int> rows;
    for (const QString &line : lines)
        if (const auto match = form.match(line.trimmed()); match.hasMatch())
            rows.append(match.captured(1).toInt());
    return rows;
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
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(u"pdftotext"_s).isEmpty())
            QSKIP("needs poppler-utils");
    }

    /// Header 40, headings and rows 12: of 700 points 54 rows are left 648, of 699 one less.
    void pagesAndPlaces_data()
    {
        NamedRows<double, qint64, qint64, qint64> row("printableHeight", "rows", "rowsPerPage", "pages");
        row("none", 700.0, 0, 54, 0);
        row("one", 700.0, 1, 54, 1);
        row("one page", 700.0, 54, 54, 1);
        row("one more", 700.0, 55, 54, 2);
        row("a row too high", 699.9, 54, 53, 2);
        row("full pages", 700.0, 108, 54, 2);
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
        double bottom = layout.frame().height();
        for (qint64 page = 1; page <= layout.pages; ++page) {
            const QRectF sheet = layout.rectForPage(page);
            QCOMPARE(sheet, QRectF(0.0, bottom - layout.paper.size.height(), 600.0, printableHeight + 90.0));
            bottom = sheet.y();
            QCOMPARE(layout.firstRow(page), next);
            QVERIFY(layout.rowsOnPage(page) > 0);
            QCOMPARE(layout.pageHeaderY(page), sheet.y() + sheet.height() - 50.0 - 40.0);
            QCOMPARE(layout.columnHeadingsY(page), layout.pageHeaderY(page) - 12.0);
            QCOMPARE(layout.rowY(next), layout.pageHeaderY(page) - 12.0 - 3.0);
            next += layout.rowsOnPage(page);
            QCOMPARE(layout.rowY(next - 1),
                     layout.rowY(layout.firstRow(page)) - 12.0 * double(layout.rowsOnPage(page) - 1));
            QVERIFY(printableHeight < 100.0 || layout.rowY(next - 1) >= sheet.y() + 40.0);
            const ZELKReportLayout::Pages touched = layout.pagesIn(sheet);
            QVERIFY(touched.first == page && touched.last == page);
        }
        QCOMPARE(next, rows);
        QCOMPARE(bottom, 0.0);
    }

    void eachRowIsPrintedOnce_data()
    {
        NamedRows<QPageSize::PageSizeId, QPageLayout::Orientation, int, int, double> row(
            "paper", "orientation", "rows", "more", "width");
        const auto portrait = QPageLayout::Portrait;
        const auto landscape = QPageLayout::Landscape;
        row("A4", QPageSize::A4, portrait, 300, 0, 595.0);
        row("A4 landscape", QPageSize::A4, landscape, 300, 0, 842.0);
        row("Letter", QPageSize::Letter, portrait, 300, 0, 612.0);
        row("Letter landscape", QPageSize::Letter, landscape, 300, 0, 792.0);
        row("one", QPageSize::A4, portrait, 1, 0, 595.0);
        row("full pages", QPageSize::A4, portrait, 0, 0, 595.0);
        row("one more", QPageSize::Letter, landscape, 0, 1, 792.0);
        row("very many", QPageSize::A4, portrait, 100'000, 0, 595.0);
    }
    void eachRowIsPrintedOnce()
    {
        QFETCH(int, rows);
        QFETCH(int, more);
        QFETCH(QPageSize::PageSizeId, paper);
        QFETCH(QPageLayout::Orientation, orientation);
        if (rows == 0)
            rows = 2 * int(PrintFixture(1, paper, orientation).report()->layout().rowsPerPage) + more;
        PrintFixture bed(rows, paper, orientation);
        auto report = bed.report();
        const ZELKReportLayout layout = report->layout();
        QCOMPARE(report->knowsPageRange().location, 1);
        QCOMPARE(report->knowsPageRange().length, (rows + layout.rowsPerPage - 1) / layout.rowsPerPage);
        QCOMPARE(bed.print(std::move(report)), State::Done);
        const QString about = readPdf(u"pdfinfo"_s, {bed.file()});
        QVERIFY(QRegularExpression(u"Title: *Lullwatch\n"_s).match(about).hasMatch());
        QFETCH(double, width);
        QVERIFY2(about.contains(u"%1 x"_s.arg(width)), qPrintable(about));
        const QList<QStringList> pages = linesOfPages(bed.file());
        QCOMPARE(pages.size(), layout.pages);
        QList<int> printed;
        for (int page = 1; page <= pages.size(); ++page) {
            const QStringList &lines = pages.at(page - 1);
            QVERIFY(lines.at(0).startsWith(u"Five days"_s));
            QVERIFY(lines.at(0).endsWith(u"Page %1 of %2"_s.arg(page).arg(layout.pages)));
            QCOMPARE(lines.at(1).simplified(), u"Date Summary"_s);
            const QList<int> here = rowsIn(lines);
            QCOMPARE(here.size(), layout.rowsOnPage(page));
            QCOMPARE(here.first(), layout.firstRow(page));
            printed.append(here);
        }
        QCOMPARE(printed.size(), rows);
        for (int row = 0; row < rows; ++row)
            QCOMPARE(printed.at(row), row);
    }

    void withoutRowsNothingIsPrinted()
    {
        PrintFixture bed(0);
        auto report = bed.report();
        QCOMPARE(report->pages(), 0);
        QImage image(50, 50, QImage::Format_RGB32);
        image.fill(Qt::white);
        const QImage before = image;
        QPainter painter(&image);
        report->drawRect(painter, {0.0, -500.0, 600.0, 1000.0});
        painter.end();
        QCOMPARE(image, before);
        QCOMPARE(bed.print(std::move(report)), State::Done);
        QVERIFY(!QFile::exists(bed.file()));
    }

    /// Margins that leave nothing: a row a page, none of which can be seen.
    void aSheetCanBeTooSmall()
    {
        PrintFixture bed(3);
        const ZELKLWCPrintableReportView report(&bed.view, &bed.model(), u"title"_s,
                                                {{20.0, 20.0}, {15.0, 15.0, 15.0, 15.0}});
        QCOMPARE(report.pages(), 3);
        QImage image(20, 20, QImage::Format_RGB32);
        QPainter painter(&image);
        for (qint64 page = 1; page <= report.pages(); ++page)
            report.drawRect(painter, report.rectForPage(page));
    }

    void theResolutionChangesNothing()
    {
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

    void cellsOfARow_data()
    {
        // In the first of two columns; the report is 451 points wide and begins at 72.
        NamedRows<QString, double, Qt::Alignment, bool, QString, double> row(
            "text", "width", "alignment", "isIdentified", "shown", "secondX");
        row("shares", u"left"_s, 499.0, Qt::AlignLeft, true, u"left"_s, 72.0 + 451.0 / 2.004);
        row("a narrow column", u"left"_s, 1.0, Qt::AlignLeft, true, u"left"_s, 72.0 + 451.0 * 0.3);
        row("first line only", u"one\ntwo"_s, 499.0, Qt::AlignLeft, true, u"one"_s, 0.0);
        row("cut at the tail", u"a%1"_s.arg(QString(5000, u'b')), 499.0, Qt::AlignLeft, true, {}, 0.0);
        row("right", u"right"_s, 499.0, Qt::AlignRight, true, u"right"_s, 0.0);
        row("no identifier", u"left"_s, 499.0, Qt::AlignLeft, false, u""_s, 72.0 + 451.0 / 2.004);
    }
    void cellsOfARow()
    {
        QFETCH(QString, text);
        QFETCH(double, width);
        QFETCH(Qt::Alignment, alignment);
        QFETCH(bool, isIdentified);
        QFETCH(QString, shown);
        QFETCH(double, secondX);
        PrintFixture bed(1);
        const StubFormatter first(text);
        const StubFormatter second(u"second"_s);
        auto report = bed.report();
        report->setColumns({{isIdentified ? u"event"_s : QString(), {}, width, alignment, &first},
                            {u"event"_s, {}, 1000.0 - 2.0 - width, Qt::AlignLeft, &second},
                            {u"date"_s, u"unformatted"_s, 0.0, Qt::AlignLeft, nullptr}});
        const ConsoleLines lines;
        QCOMPARE(bed.print(std::move(report)), State::Done);
        QCOMPARE(lines.count("Error column does not have an identifier set!"), isIdentified ? 0 : 1);
        QMap<QString, QRectF> words;
        for (const auto &[word, place] : wordsOfFirstPage(bed.file()))
            words.insert(word, place);
        QVERIFY(!words.contains(u"two"_s));
        const double cellEnd = words.value(u"second"_s).x() - 3.0;
        if (secondX > 0.0)
            QVERIFY(std::abs(words.value(u"second"_s).x() - secondX) < 1.0);
        if (!shown.isEmpty())
            QVERIFY(words.contains(shown));
        if (alignment == Qt::AlignRight)
            QVERIFY(std::abs(words.value(shown).right() - cellEnd) < 1.0);
        for (auto word = words.cbegin(); word != words.cend(); ++word)
            if (word.key().startsWith(u"ab"_s))
                QVERIFY(word.key().endsWith(u"…"_s) && word->right() < cellEnd + 0.1);
        QCOMPARE(words.contains(u"left"_s), isIdentified && text == u"left"_s);
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
        QImage image(595, 842, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        report->drawRect(painter, report->rectForPage(1));
        painter.end();
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
        QImage white(above.size(), above.format());
        white.fill(Qt::white);
        QCOMPARE(above, white); // marks stay in their row
    }

    void aPageCostsItsOwnRowsAlone()
    {
        PrintFixture bed(20'000);
        const StubFormatter counted(u"text"_s);
        auto report = bed.report();
        report->setColumns({{u"event"_s, u"Event"_s, 100.0, Qt::AlignLeft, &counted}});
        QImage image(595, 842, QImage::Format_RGB32);
        QPainter painter(&image);
        report->drawRect(painter, report->rectForPage(report->pages()));
        QCOMPARE(counted.asked, report->layout().rowsOnPage(report->pages()));
        QRectF lowerHalf = report->rectForPage(1);
        lowerHalf.setHeight(lowerHalf.height() / 2.0);
        counted.asked = 0;
        report->drawRect(painter, lowerHalf);
        QVERIFY(counted.asked > 0 && counted.asked < report->layout().rowsPerPage * 2 / 3);
    }

    void whatIsMissingRaises()
    {
        PrintFixture bed(1);
        const auto make = [&](bool view, bool data, const QString &title) {
            try {
                ZELKLWCPrintableReportView(view ? &bed.view : nullptr, data ? &bed.model() : nullptr, title,
                                           {{595.0, 842.0}, {}});
            } catch (const ZELKAssertionFailure &failure) {
                return u"%1:%2 %3"_s.arg(failure.file()).arg(failure.line()).arg(failure.message());
            }
            return QString();
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
        row("all", {3}, {1, 2, 3});
        row("none", {0}, {});
        row("from and to", {5, 2, 4}, {2, 3, 4});
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
        PrintFixture bed(2000);
        writeFile(bed.file(), "older");
        {
            ZELKPrintOperation cancelled(bed.report(), bed.printer);
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
        bed.printer.setPrintRange(QPrinter::AllPages);
        const LargestFile limit(50'000); // in the temporary folder
        ZELKPrintOperation half(bed.report(), bed.printer);
        QCOMPARE(half.advance(100'000), State::Failed);
        QCOMPARE(half.error(), u"File too large"_s);
        QCOMPARE(linesOfPages(bed.file()).size(), 2);
    }
};

QTEST_MAIN(TestPrint)
#include "tst_print.moc"
