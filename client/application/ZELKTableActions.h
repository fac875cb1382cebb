#pragma once

#include "ZELKLWCLogTableController.h"

class QAction;
class QActionGroup;
class QMainWindow;
class QMenu;
class QPoint;
class ZELKLWCDateJumpController;

/// What menus do with the table's rows: copy and select them, find their partners, show their days alone,
/// sort them. Some of it also stands in the context menu of rows.
class ZELKTableActions : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. All that is given outlives the
    /// actions.
    ZELKTableActions(QMainWindow &window, ZELKLWCLogTableController &table, ZELKLWCLogTableView &view,
                     ZELKLWCDateJumpController &dateJump);

private:
    QAction *connectAction(const char *name, void (ZELKTableActions::*function)());
    void makeContextMenu();
    void connectSorting();
    void follow();
    void validate();
    void copy();
    void selectAll();
    void selectPair();
    void extendToPair();
    void jumpToSelection();
    void sort();
    void showSorting();

    QMainWindow &m_window;
    ZELKLWCLogTableController &m_table;
    ZELKLWCLogTableView &m_view;
    ZELKLWCDateJumpController &m_dateJump;
    QAction *m_copy;
    QAction *m_selectAll;
    QAction *m_selectPair;
    QAction *m_extendToPair;
    QAction *m_jumpToSelection;
    QActionGroup *m_columns; // in the order of the columns
    QActionGroup *m_directions;
    QMenu *m_contextMenu;
};
