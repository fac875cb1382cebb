#pragma once

#include "ZELKLWCInspectorController.h"
#include "ZELKNotificationQueue.h"

class QAction;
class QMainWindow;
class ZELKApplicationWiring;
class ZELKLWCLogTableView;
class ZELKLogTable;

/// The inspector of the main window: what shows and hides it, and where the keys go when it is gone.
class ZELKInspectorWiring : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. All that is given outlives this
    /// object.
    ZELKInspectorWiring(QMainWindow &window, ZELKApplicationWiring &wiring, ZELKLogTable &table);

    ZELKLWCInspectorController &controller() { return m_controller; }
    void applicationDidFinishLaunching() { m_controller.applicationDidFinishLaunching(); }
    void saveState() const { m_controller.saveFrame(); }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void toggle();
    void goTo();
    void showState(bool isVisible);

    QMainWindow &m_window;
    ZELKLWCLogTableController &m_table;
    ZELKLWCLogTableView &m_view;
    ZELKNotificationQueue m_queue;
    ZELKLWCInspectorController m_controller;
    QAction *m_action;
};
