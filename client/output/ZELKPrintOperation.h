#pragma once

#include "ZELKLWCPrintableReportView.h"
#include "ZELKPageSequence.h"

#include <QPainter>

#include <memory>

class QTemporaryFile;
class ZELKExportFile;

/// Prints a report, in slices between which its owner does what else there is to do. Who destroys it before
/// it is done has cancelled it: then a file that was to be printed to is as it was. A printer is told to
/// abort; whether it still can is its own affair.
class ZELKPrintOperation
{
public:
    enum class State {
        Printing,
        Done,
        Failed ///< error() says why
    };

    /// The printer's paper, range and copies are those of the moment; none of it must change meanwhile, and
    /// the printer must outlive the operation.
    ZELKPrintOperation(std::unique_ptr<const ZELKLWCPrintableReportView> view, QPrinter &printer);
    ~ZELKPrintOperation();
    ZELKPrintOperation(const ZELKPrintOperation &) = delete;
    ZELKPrintOperation &operator=(const ZELKPrintOperation &) = delete;

    /// Goes on for about so long.
    State advance(int milliseconds);
    State state() const { return m_state; }
    /// Not while a file that was there is being written over.
    bool canBeCancelled() const;
    /// How far it is, from 0 to 1.
    double fraction() const;
    /// The system's words, where it has some.
    QString error() const { return m_error; }

    /// Draws a page on a printer's sheet, whose corner is the painter's origin, at the device's resolution.
    static void drawPage(QPainter &painter, const ZELKLWCPrintableReportView &view, qint64 page);

private:
    void begin();
    bool beginFile();
    void goOn();
    void printNext();
    void end();
    void beginPlacing();
    void placeNext();
    QString reasonOfFile() const;
    void fail(const QString &error = {});
    void giveBackPrinter();

    std::unique_ptr<const ZELKLWCPrintableReportView> m_view;
    QPrinter &m_printer;
    QList<qint64> m_pages;
    qsizetype m_printed = 0;
    QString m_path; // empty on a printer
    bool m_wasFullPage;
    std::unique_ptr<QTemporaryFile> m_file;   // printed to in place of the path
    std::unique_ptr<ZELKExportFile> m_target; // the path, once all is printed
    QPainter m_painter;
    State m_state = State::Printing;
    QString m_error;
};
