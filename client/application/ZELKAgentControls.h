#pragma once

#include "ZELKAgentAlertSheet.h"

#include <QIcon>
#include <QObject>

class QAction;
class QMainWindow;
class QPushButton;
class ZELKApplicationWiring;

/// What starts, stops, updates and asks the agent in the main window: the button, the menu's items, and the
/// sheets on which the agent controller asks.
class ZELKAgentControls : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. Both outlive the controls.
    ZELKAgentControls(QMainWindow &window, ZELKApplicationWiring &wiring);
    /// The controller asks nothing any more.
    ~ZELKAgentControls() override;

private:
    void connectActions();
    void follow();
    void update();

    ZELKApplicationWiring &m_wiring;
    ZELKAgentAlertSheet m_sheet;
    QPushButton *m_button;
    QAction *m_startStop;
    QAction *m_update;
    QAction *m_fetch;
    QIcon m_recordSymbol;
    QIcon m_stopSymbol;
};
