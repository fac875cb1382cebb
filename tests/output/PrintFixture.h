#pragma once

#include "TableWindow.h"
#include "ZELKPrintOperation.h"

#include <QProcess>
#include <QRegularExpression>

/// A window's table with so many rows, "row 0" and so on, and where they are printed to.
struct PrintFixture : Table
{
    QPrinter printer{QPrinter::HighResolution};

    explicit PrintFixture(int rows, QPageSize::PageSizeId paper = QPageSize::A4,
                          QPageLayout::Orientation orientation = QPageLayout::Portrait)
        : Table(0)
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < rows; ++i)
            events.append(
                ZELKMakeRawEvent(ZELKDate(next + i * 60.0), u"row %1"_s.arg(i), u"org.example.%1"_s.arg(i)));
        log.addExternalEntries(events);
        printer.setPageLayout(
            {QPageSize(paper), orientation, QMarginsF(72.0, 54.0, 72.0, 54.0), QPageLayout::Point});
        printer.setOutputFileName(file());
    }
    QString file() const { return folder.filePath(u"report.pdf"_s); }
    std::unique_ptr<ZELKLWCPrintableReportView> report(const QString &title = u"Five days"_s)
    {
        return std::make_unique<ZELKLWCPrintableReportView>(
            &view, &model(), title, ZELKReportLayout::Paper::of(printer.pageLayout()));
    }
    /// How it ended.
    ZELKPrintOperation::State print(std::unique_ptr<ZELKLWCPrintableReportView> report)
    {
        ZELKPrintOperation operation(std::move(report), printer);
        while (operation.advance(1000) < ZELKPrintOperation::State::Done) {
        }
        return operation.state();
    }
};

/// What one of poppler's tools says of a file; fails where there is none.
inline QString readPdf(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.start(tool, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s: %s", qPrintable(tool), process.readAllStandardError().constData());
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// The lines of each page.
inline QList<QStringList> linesOfPages(const QString &file)
{
    QList<QStringList> pages;
    for (const QString &page : readPdf(u"pdftotext"_s, {u"-layout"_s, file, u"-"_s}).split(u'\f'))
        pages.append(page.split(u'\n', Qt::SkipEmptyParts));
    pages.removeLast(); // what follows the last page's end
    return pages;
}

/// Where each word of the first page stands, in points from the upper left corner.
inline QMap<QString, QRectF> wordsOfFirstPage(const QString &file)
{
    static const QRegularExpression form(
        u"<word xMin=\"(.*)\" yMin=\"(.*)\" xMax=\"(.*)\" yMax=\"(.*)\">(.*)</word>"_s);
    QMap<QString, QRectF> words;
    auto matches = form.globalMatch(readPdf(u"pdftotext"_s, {u"-bbox"_s, u"-l"_s, u"1"_s, file, u"-"_s}));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const auto number = [&match](int part) { return match.captured(part).toDouble(); };
        words.insert(match.captured(5), {QPointF(number(1), number(2)), QPointF(number(3), number(4))});
    }
    return words;
}
