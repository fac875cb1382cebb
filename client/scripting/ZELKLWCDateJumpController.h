#pragma once

#include <QObject>

class QCalendarWidget;
class QDateEdit;
class QDialog;
class QMainWindow;
class ZELKBundle;
class ZELKLWCLog;
class ZELKLWCLogSlice;
class ZELKLWCLogTableController;

/// Takes the range to a day that the user picks on a sheet, or to the days of the selected rows.
class ZELKLWCDateJumpController : public QObject
{
    Q_OBJECT

public:
    enum class MenuItem { Show, JumpToSelection, Other };
    /// None owned, all to outlive the controller.
    struct Outlets
    {
        ZELKLWCLogSlice &visibleSlice;
        ZELKLWCLogTableController &tableController;
        ZELKLWCLog &log;
    };

    /// Loads the sheet, hidden. `window` owns it.
    ZELKLWCDateJumpController(QWidget &window, const ZELKBundle &bundle, const Outlets &outlets,
                              QObject *parent = nullptr);

    /// The sheet with today, or the nearest of the days from the first entry's to that on which the last one
    /// began. What only repeated it later belongs to it: such days are in the log's range and not picked.
    /// Window-modal; does not wait.
    void show();
    /// From the day of the first selected entry to that of the last one's last repetition.
    void jumpToSelection();
    bool validateMenuItem(MenuItem item) const;

private:
    void ok();

    Outlets m_outlets;
    QDialog *m_window;
    QDateEdit *m_date;
    QCalendarWidget *m_calendar;
};
