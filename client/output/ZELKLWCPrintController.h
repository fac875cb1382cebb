#pragma once

#include "ZELKLWCPrintableReportView.h"

#include <QObject>

#include <memory>

class QPrinter;
class ZELKLWCDateRangeController;
class ZELKLWCLogTableController;
class ZELKOutputProgress;

/// Prints the table as it is arranged, in the title the period that it shows: with a dialog before and
/// progress meanwhile, or as a preview. It remembers printer, paper and margins as long as it lives.
class ZELKLWCPrintController : public QObject
{
    Q_OBJECT

public:
    enum class MenuItem { Print, Other };

    /// What the controller stands between; none owned, all to outlive it.
    struct Outlets
    {
        ZELKLWCDateRangeController &dateRange;
        ZELKLWCLogTableController &tableController;
        ZELKLWCLogTableView &tableView;
        QWidget &window; ///< what the dialogs are modal for
    };

    explicit ZELKLWCPrintController(const Outlets &outlets, QObject *parent = nullptr);
    ~ZELKLWCPrintController() override;

    /// The print dialog; who accepts it has the report printed. Does nothing without rows, and while
    /// something is being printed.
    void print();
    void printPreview();
    void pageSetup();
    /// Whether there is a row to print; other items are always valid.
    bool validateMenuItem(MenuItem item) const;

    /// The table as it is now, on the printer's paper.
    std::unique_ptr<ZELKLWCPrintableReportView> makeReport(const QPrinter &printer) const;
    /// What all printing shares: which printer, which paper.
    QPrinter &printInfo();

Q_SIGNALS:
    /// Printing has ended, also where it was cancelled. `error` is null unless it failed; it holds the
    /// system's words, where it has some.
    void printed(const QString &error);

private:
    bool canPrint() const;
    void prepare(const ZELKLWCPrintableReportView &report);
    void printReport();
    void drawPreview(QPrinter &printer);
    void previewEnded();

    Outlets m_outlets;
    std::unique_ptr<QPrinter> m_printInfo;
    std::unique_ptr<ZELKOutputProgress> m_progress; // while something is being printed
    bool m_printsAfterPreview = false;
};
