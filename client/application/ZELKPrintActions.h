#pragma once

#include "ZELKLWCPrintController.h"

class QAction;
class QMainWindow;

/// The items of the main window's file menu that print: the table as it is arranged, a preview of that, and
/// on which paper.
class ZELKPrintActions : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. All that is given outlives the
    /// actions.
    ZELKPrintActions(QMainWindow &window, ZELKLWCDateRangeController &dateRange,
                     ZELKLWCLogTableController &table, ZELKLWCLogTableView &view);

    ZELKLWCPrintController &controller() { return m_controller; }

private:
    QAction *connectAction(const char *name, void (ZELKLWCPrintController::*function)());
    void validate();
    void showFailure(const QString &error);

    QMainWindow &m_window;
    ZELKLWCPrintController m_controller;
    QAction *m_print;
    QAction *m_preview;
};
