#pragma once

#include "ZELKLWCPrintableReportView.h"
#include "ZELKOutputWork.h"
#include "ZELKPageSequence.h"

#include <QPainter>

#include <memory>

/// Prints a report, on a printer or into a file. Where that is cancelled a printer is told to abort; whether
/// it still can is its own affair.
class ZELKPrintOperation : public ZELKOutputWork
{
public:
    /// The printer's paper, range and copies are those of the moment; none of it must change meanwhile, and
    /// the printer must outlive the operation.
    ZELKPrintOperation(std::unique_ptr<const ZELKLWCPrintableReportView> view, QPrinter &printer);
    ~ZELKPrintOperation() override;

    /// Draws a page on a printer's sheet, whose corner is the painter's origin, at the device's resolution.
    static void drawPage(QPainter &painter, const ZELKLWCPrintableReportView &view, qint64 page);

protected:
    State produce() override;
    double producedFraction() const override;

private:
    State begin();
    State printNext();
    State end();
    State handOver();
    QString reasonOfDocument();
    State failPrinting();
    void abort();
    void giveBackPrinter();

    std::unique_ptr<const ZELKLWCPrintableReportView> m_view;
    QPrinter &m_printer;
    QList<qint64> m_pages;
    qsizetype m_printed = 0;
    QString m_path; // empty on a printer
    bool m_wasFullPage;
    QPainter m_painter;
};
