#include "ZELKPrintOperation.h"

#include "ZELKSystemErrorText.h"

#include <QFile>

#include <algorithm>
#include <cerrno>

namespace {

std::unique_ptr<ZELKExportFile> fileOf(const QPrinter &printer)
{
    const QString path = printer.outputFileName();
    return path.isEmpty() ? nullptr : std::make_unique<ZELKExportFile>(path);
}

} // namespace

ZELKPrintOperation::ZELKPrintOperation(std::unique_ptr<const ZELKLWCPrintableReportView> view,
                                       QPrinter &printer)
    : ZELKOutputWork(fileOf(printer))
    , m_view(std::move(view))
    , m_printer(printer)
    , m_pages(ZELKPageSequence::of(printer, m_view->pages()).pageNumbers())
    , m_path(printer.outputFileName())
    , m_wasFullPage(printer.fullPage())
{
}

ZELKPrintOperation::~ZELKPrintOperation()
{
    if (m_painter.isActive())
        abort();
}

/// A printer makes an empty sheet of a job without pages.
ZELKOutputWork::State ZELKPrintOperation::produce()
{
    if (m_pages.isEmpty())
        return State::Done;
    if (!m_painter.isActive())
        return begin();
    return m_printed < m_pages.size() ? printNext() : end();
}

double ZELKPrintOperation::producedFraction() const
{
    return m_pages.isEmpty() ? 1.0 : double(m_printed) / double(m_pages.size());
}

ZELKOutputWork::State ZELKPrintOperation::begin()
{
    if (!m_path.isEmpty()) {
        QFile document(file().stagedPath()); // the printer would not tell why it cannot
        if (!document.open(QIODevice::ReadWrite))
            return fail(document.errorString());
        m_printer.setOutputFormat(QPrinter::PdfFormat); // which the name of the staged file does not tell
        m_printer.setOutputFileName(file().stagedPath());
    }
    m_printer.setDocName(ZELKLWCPrintableReportView::printJobTitle());
    m_printer.setCreator(ZELKLWCPrintableReportView::applicationName());
    m_printer.setFullPage(true);
    return m_painter.begin(&m_printer) ? State::Producing : failPrinting();
}

ZELKOutputWork::State ZELKPrintOperation::printNext()
{
    if (m_printed > 0 && !m_printer.newPage())
        return failPrinting();
    drawPage(m_painter, *m_view, m_pages.at(m_printed));
    ++m_printed;
    return State::Producing;
}

void ZELKPrintOperation::drawPage(QPainter &painter, const ZELKLWCPrintableReportView &view, qint64 page)
{
    constexpr double pointsInInch = 72.0;
    painter.save();
    painter.scale(painter.device()->logicalDpiX() / pointsInInch,
                  painter.device()->logicalDpiY() / pointsInInch);
    view.drawRect(painter, view.rectForPage(page));
    painter.restore();
}

ZELKOutputWork::State ZELKPrintOperation::end()
{
    if (!m_painter.end())
        return failPrinting();
    giveBackPrinter();
    return m_path.isEmpty() ? State::Done : handOver();
}

/// Qt does not tell when it cannot write; a document that is whole ends with this.
ZELKOutputWork::State ZELKPrintOperation::handOver()
{
    constexpr char lastWord[] = "%%EOF";
    constexpr qint64 room = 16;
    file().takeStaged();
    QFile document(file().stagedPath());
    const bool isWhole = document.open(QIODevice::ReadOnly) &&
                         document.seek(std::max(document.size() - room, qint64(0))) &&
                         document.readAll().trimmed().endsWith(lastWord);
    return isWhole ? State::Placing : fail(reasonOfDocument());
}

/// Nor why. What had no room a moment ago has none now.
QString ZELKPrintOperation::reasonOfDocument()
{
    const QByteArray more(65536, ' ');
    file().takeStaged();
    file().seek(file().size());
    return file().write(more) == more.size() ? ZELKSystemErrorText(EIO) : file().systemErrorText();
}

/// Of a printer nothing is known.
ZELKOutputWork::State ZELKPrintOperation::failPrinting()
{
    abort();
    return fail(m_path.isEmpty() ? QString() : reasonOfDocument());
}

void ZELKPrintOperation::abort()
{
    if (m_painter.isActive()) {
        m_printer.abort();
        m_painter.end();
    }
    giveBackPrinter();
}

void ZELKPrintOperation::giveBackPrinter()
{
    if (!m_path.isEmpty()) // an empty name would choose the format anew
        m_printer.setOutputFileName(m_path);
    m_printer.setFullPage(m_wasFullPage);
}
