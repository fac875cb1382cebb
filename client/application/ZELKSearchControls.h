#pragma once

#include <QObject>

class QAction;
class QLabel;
class QMainWindow;
class ZELKLWCLog;
class ZELKLWCLogTableController;
class ZELKLWCLogTableView;
class ZELKSearchField;

/// The search in the main window: its field, its menu items, and how many of how many entries pass.
class ZELKSearchControls : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. All that is given outlives the
    /// controls.
    ZELKSearchControls(QMainWindow &window, ZELKLWCLogTableController &table, ZELKLWCLogTableView &view,
                       const ZELKLWCLog &log);

private:
    void follow();
    void update();

    ZELKLWCLogTableController &m_table;
    ZELKLWCLogTableView &m_view;
    const ZELKLWCLog &m_log;
    ZELKSearchField *m_filterField;
    QLabel *m_matchLabel;
    QAction *m_find;
    QAction *m_clear;
};
