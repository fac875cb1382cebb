#pragma once

#include <QDate>
#include <QObject>

class QDateEdit;
class QDialog;
class QWidget;
class ZELKBundle;
class ZELKLWCDateRangeController;

/// The sheet on which the user says from which day to which day entries are shown.
class ZELKCustomRange : public QObject
{
    Q_OBJECT

public:
    /// Loads the sheet, hidden. `window` owns it and what belongs to it; `dateRange` must outlive both.
    ZELKCustomRange(QWidget &window, const ZELKBundle &bundle, ZELKLWCDateRangeController &dateRange);

    /// With the days that are shown now, out of those for which there are entries. Window-modal; does not
    /// wait.
    void open();

private:
    void accept();

    ZELKLWCDateRangeController &m_dateRange;
    QDialog *m_dialog;
    QDateEdit *m_from;
    QDateEdit *m_to;
};
