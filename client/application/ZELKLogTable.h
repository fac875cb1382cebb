#pragma once

#include "ZELKLWCLogEntryFormatter.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKLWCRelativeDateFormatter.h"
#include "ZELKNotificationQueue.h"

class QMainWindow;
class ZELKApplicationWiring;
class ZELKTailFollower;
class ZELKWindowState;

/// The window's table with all that it takes: its controller, what makes its texts, and what keeps the newest
/// row in view.
class ZELKLogTable : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. Window and wiring must outlive the table.
    ZELKLogTable(QMainWindow &window, ZELKApplicationWiring &wiring);

    ZELKLWCLogTableController &controller() { return m_controller; }
    ZELKLWCLogTableView &view() { return m_view; }
    /// Rows as high, and columns as wide, as the view's font asks for; `state` knows what the user chose.
    void fitFont(ZELKWindowState &state);

private:
    int usualDateWidth();
    void chooseNewestEnd();

    ZELKLWCLogTableView &m_view;
    ZELKLWCRelativeDateFormatter m_dateFormatter;
    ZELKLWCLogEntryFormatter m_summaryFormatter;
    ZELKNotificationQueue m_queue;
    ZELKLWCLogTableController m_controller;
    ZELKTailFollower *m_follower; // owned by the view
};
