#include "ZELKLWCPrintController.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKOutputProgress.h"
#include "ZELKPrintOperation.h"

#include <QPageSetupDialog>
#include <QPaintEngine>
#include <QPointer>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

#include <algorithm>

namespace {

/// An inch at the sides leaves room for a column that is wider than its share.
const QMarginsF usualMargins(72.0, 54.0, 72.0, 54.0);
/// A preview holds all of its pages in memory, and is drawn at one go.
constexpr qint64 mostPreviewPages = 300;

QString text(const char *key)
{
    return ZELKInterfaceLoader::text(QStringLiteral("ZELKLWCPrintController"), QString::fromLatin1(key));
}

std::unique_ptr<QPrinter> usualPrinter()
{
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    const bool isLetter = ZELKEnvironment::current().locale.measurementSystem() == QLocale::ImperialUSSystem;
    if (printer->outputFormat() == QPrinter::PdfFormat)
        printer->setPageSize(QPageSize(isLetter ? QPageSize::Letter : QPageSize::A4));
    printer->setPageMargins(usualMargins, QPageLayout::Point);
    return printer;
}

/// Shown until it is closed, and gone then.
void open(QDialog &dialog)
{
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    dialog.setWindowModality(Qt::WindowModal);
    dialog.open();
}

} // namespace

ZELKLWCPrintController::ZELKLWCPrintController(const Outlets &outlets, QObject *parent)
    : QObject(parent)
    , m_outlets(outlets)
{
}

ZELKLWCPrintController::~ZELKLWCPrintController() = default;

/// Asking for printers takes a moment, and most people never print.
QPrinter &ZELKLWCPrintController::printInfo()
{
    if (!m_printInfo)
        m_printInfo = usualPrinter();
    return *m_printInfo;
}

bool ZELKLWCPrintController::validateMenuItem(MenuItem item) const
{
    return item != MenuItem::Print || m_outlets.tableController.model().rowCount() > 0;
}

bool ZELKLWCPrintController::canPrint() const
{
    return !m_progress && validateMenuItem(MenuItem::Print);
}

std::unique_ptr<ZELKLWCPrintableReportView> ZELKLWCPrintController::makeReport(const QPrinter &printer) const
{
    return std::make_unique<ZELKLWCPrintableReportView>(
        &m_outlets.tableView, &m_outlets.tableController.model(),
        m_outlets.dateRange.absoluteDuration()->periodDescription(),
        ZELKReportLayout::Paper::of(printer.pageLayout()));
}

/// Once and whole, unless the user wants otherwise.
void ZELKLWCPrintController::prepare(const ZELKLWCPrintableReportView &report)
{
    printInfo().setDocName(ZELKLWCPrintableReportView::printJobTitle());
    printInfo().setCopyCount(1);
    printInfo().setFromTo(1, int(report.pages()));
    printInfo().setPrintRange(QPrinter::AllPages);
}

void ZELKLWCPrintController::print()
{
    if (!canPrint())
        return;
    const auto report = makeReport(printInfo());
    prepare(*report);
    auto *dialog = new QPrintDialog(&printInfo(), &m_outlets.window);
    dialog->setMinMax(1, int(report->pages()));
    connect(dialog, qOverload<QPrinter *>(&QPrintDialog::accepted), this,
            [this] { zelkGuard([this] { printReport(); }); });
    open(*dialog);
}

/// The paper may be another one than before the dialog.
void ZELKLWCPrintController::printReport()
{
    if (!canPrint())
        return;
    m_progress = std::make_unique<ZELKOutputProgress>(
        std::make_unique<ZELKPrintOperation>(makeReport(printInfo()), printInfo()),
        ZELKOutputProgress::Texts{text("ZELKLWCPrintController.progress.title"),
                                  text("ZELKLWCPrintController.progress")},
        m_outlets.window);
    connect(m_progress.get(), &ZELKOutputProgress::ended, this, [this](const QString &error) {
        zelkGuard([&] {
            m_progress.release()->deleteLater();
            Q_EMIT printed(error);
        });
    });
    m_progress->start();
}

/// This dialog passes on what was chosen only to those who wait for it.
void ZELKLWCPrintController::pageSetup()
{
    if (m_progress)
        return;
    const QPointer<QPageSetupDialog> dialog = new QPageSetupDialog(&printInfo(), &m_outlets.window);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->exec();
    delete dialog; // unless the window has gone meanwhile
}

// MARK: preview

void ZELKLWCPrintController::printPreview()
{
    if (!canPrint())
        return;
    const auto report = makeReport(printInfo());
    prepare(*report);
    printInfo().setFullPage(true);
    m_printsAfterPreview = false;
    auto *dialog = new QPrintPreviewDialog(&printInfo(), &m_outlets.window);
    if (report->pages() > mostPreviewPages)
        dialog->setWindowTitle(
            ZELKFormat(text("ZELKLWCPrintController.preview.first"), {mostPreviewPages, report->pages()}));
    dialog->resize(m_outlets.window.size().expandedTo({700, 800}));
    connect(dialog, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter *printer) { zelkGuard([&] { drawPreview(*printer); }); });
    connect(dialog, &QDialog::finished, this, [this] { zelkGuard([this] { previewEnded(); }); });
    open(*dialog);
}

/// The preview asks for the same when its own button for printing was pressed. That is left to us, who print
/// in slices, for when it has closed.
void ZELKLWCPrintController::drawPreview(QPrinter &printer)
{
    if (printer.paintEngine()->type() != QPaintEngine::Picture) {
        m_printsAfterPreview = true;
        return;
    }
    const auto report = makeReport(printer);
    QPainter painter(&printer);
    for (qint64 page = 1; page <= std::min(report->pages(), mostPreviewPages); ++page) {
        if (page > 1)
            printer.newPage();
        ZELKPrintOperation::drawPage(painter, *report, page);
    }
}

void ZELKLWCPrintController::previewEnded()
{
    printInfo().setFullPage(false);
    if (m_printsAfterPreview)
        printReport();
}
