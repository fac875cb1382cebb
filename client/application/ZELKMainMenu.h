#pragma once

#include <QObject>

class QAction;
class QMainWindow;
class ZELKApplicationWiring;
class ZELKPreferences;

/// The items of the main window's menus that belong to nothing else in it: the window itself, the settings
/// that are shown as ticks, and preferences. What an item does is told in the status bar.
class ZELKMainMenu : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. Both outlive the menu.
    ZELKMainMenu(QMainWindow &window, ZELKApplicationWiring &wiring);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectWindow();
    void connectSettings();
    void showHintsInStatusBar();
    void setFullScreen(bool isFull);
    template <typename Receiver, typename Function>
    void onTriggered(const char *action, Receiver *receiver, Function function);

    QMainWindow &m_window;
    ZELKApplicationWiring &m_wiring;
    QAction *m_fullScreen;
    ZELKPreferences *m_preferences; // owned by the window
};
