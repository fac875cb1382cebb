#include "ZELKPrintOperation.h"

#include "ZELKExportFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryFile>

#include <cerrno>
#include <cstring>

ZELKPrintOperation::ZELKPrintOperation(std::unique_ptr<const ZELKLWCPrintableReportView> view,
                                       QPrinter &printer)
    : m_view(std::move(view))
    , m_printer(printer)
    , m_pages(ZELKPageSequence::of(printer, m_view->pages()).pageNumbers())
    , m_path(printer.outputFileName())
    , m_wasFullPage(printer.fullPage())
{
}

ZELKPrintOperation::~ZELKPrintOperation()
{
    if (!m_painter.isActive())
        return;
    m_printer.abort();
    m_painter.end();
    giveBackPrinter();
}

ZELKPrintOperation::State ZELKPrintOperation::advance(int milliseconds)
{
    QElapsedTimer elapsed;
    elapsed.start();
    if (m_state == State::Printing && !m_painter.isActive() && !m_target)
        begin();
    while (m_state == State::Printing && !elapsed.hasExpired(milliseconds))
        goOn();
    return m_state;
}

void ZELKPrintOperation::goOn()
{
    if (m_target)
        placeNext();
    else if (m_printed < m_pages.size())
        printNext();
    else
        end();
}

bool ZELKPrintOperation::canBeCancelled() const
{
    return !m_target || !m_target->isReplacing();
}

double ZELKPrintOperation::fraction() const
{
    return m_pages.isEmpty() ? 1.0 : double(m_printed) / double(m_pages.size());
}

/// A printer makes an empty sheet of a job without pages.
void ZELKPrintOperation::begin()
{
    if (m_pages.isEmpty()) {
        m_state = State::Done;
        return;
    }
    if (!m_path.isEmpty() && !beginFile())
        return;
    m_printer.setDocName(ZELKLWCPrintableReportView::printJobTitle());
    m_printer.setCreator(ZELKLWCPrintableReportView::applicationName());
    m_printer.setFullPage(true);
    if (!m_painter.begin(&m_printer))
        fail();
}

bool ZELKPrintOperation::beginFile()
{
    m_file = std::make_unique<QTemporaryFile>(QDir::temp().filePath(QStringLiteral("lullwatch-XXXXXX.pdf")));
    if (!m_file->open()) {
        fail(m_file->errorString());
        return false;
    }
    m_printer.setOutputFileName(m_file->fileName());
    return true;
}

void ZELKPrintOperation::printNext()
{
    if (m_printed > 0 && !m_printer.newPage())
        return fail();
    drawPage(m_painter, *m_view, m_pages.at(m_printed));
    ++m_printed;
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

void ZELKPrintOperation::end()
{
    if (!m_painter.end())
        return fail();
    giveBackPrinter();
    if (m_path.isEmpty())
        m_state = State::Done;
    else
        beginPlacing();
}

/// Qt does not tell when it cannot write; a file that is whole ends with this.
void ZELKPrintOperation::beginPlacing()
{
    constexpr char lastWord[] = "%%EOF";
    const QByteArray bytes = m_file->readAll();
    if (!bytes.trimmed().endsWith(lastWord))
        return fail();
    m_target = std::make_unique<ZELKExportFile>(m_path);
    if (!m_target->open() || m_target->write(bytes) != bytes.size())
        fail(m_target->systemErrorText());
}

/// Qt does not tell why it could not write to the file. What had no room a moment ago has none now.
QString ZELKPrintOperation::reasonOfFile() const
{
    constexpr qsizetype roomy = 65536;
    const bool hasRoom =
        m_file->seek(m_file->size()) && m_file->write(QByteArray(roomy, ' ')) == roomy && m_file->flush();
    return hasRoom ? QString::fromLocal8Bit(std::strerror(EIO)) : m_file->errorString();
}

void ZELKPrintOperation::placeNext()
{
    switch (m_target->place()) {
    case ZELKExportFile::Placing::More:
        break;
    case ZELKExportFile::Placing::Done:
        m_state = State::Done;
        break;
    case ZELKExportFile::Placing::Failed:
        fail(m_target->systemErrorText());
        break;
    }
}

void ZELKPrintOperation::fail(const QString &error)
{
    if (m_painter.isActive()) {
        m_printer.abort();
        m_painter.end();
    }
    giveBackPrinter();
    m_error = error.isNull() && m_file ? reasonOfFile() : error;
    m_state = State::Failed;
}

void ZELKPrintOperation::giveBackPrinter()
{
    if (m_file) // an empty name would choose the format anew
        m_printer.setOutputFileName(m_path);
    m_printer.setFullPage(m_wasFullPage);
}
