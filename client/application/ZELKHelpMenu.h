#pragma once

#include "ZELKAddressBook.h"

#include <QNetworkAccessManager>
#include <QObject>

#include <memory>

class QAction;
class QMainWindow;
class ZELKApplicationExtras;
class ZELKApplicationWiring;

/// The items of the Help menu: what to read, whom to tell, and what this is.
class ZELKHelpMenu : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. Both outlive the menu.
    ZELKHelpMenu(QMainWindow &window, ZELKApplicationWiring &wiring);
    ~ZELKHelpMenu() override;

private:
    void connectGuide();
    void connectSampleLog();
    void connectFeedback();
    void connectExtras();
    QAction &action(const char *name) const;
    void onTriggered(QAction &action, const std::function<void()> &perform);

    QMainWindow &m_window;
    ZELKApplicationWiring &m_wiring;
    QNetworkAccessManager m_network;
    ZELKSystemAddressBook m_addressBook;
    std::shared_ptr<ZELKApplicationExtras> m_extras;
};
