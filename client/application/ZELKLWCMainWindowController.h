#pragma once

#include "ZELKAgentError.h"
#include "ZELKLWCLogTableModel.h"

#include <QObject>

#include <memory>

class QLabel;
class QMainWindow;
class QStackedWidget;
class QTableView;
class QWidget;
class ZELKApplicationWiring;
class ZELKStatusLine;

/// The main window: the visible entries, the date range that chooses them, and the agent's state with what
/// starts, stops and updates it. While it lives it also shows what guards catch.
class ZELKLWCMainWindowController : public QObject
{
    Q_OBJECT

public:
    /// Loads the window from the main bundle, hidden. `wiring` must outlive the controller.
    explicit ZELKLWCMainWindowController(ZELKApplicationWiring &wiring, QObject *parent = nullptr);
    ~ZELKLWCMainWindowController() override;

    QMainWindow *window() const { return m_window.get(); }
    void showWindow();
    void saveGeometry();
    /// Window-modal; does not wait.
    void presentError(const ZELKAgentError &error);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setUpTable();
    void fitDateColumn();
    void setUpActions();
    void setUpAgent();
    void setUpUserGuide();
    void updateEmptyText();
    void showAbout();
    void restoreGeometry();
    template <typename Type>
    Type *outlet(const char *name) const;

    ZELKApplicationWiring &m_wiring;
    std::unique_ptr<QMainWindow> m_window;
    ZELKLWCLogTableModel m_model;
    QTableView *m_table;
    QStackedWidget *m_pages;
    QLabel *m_emptyLabel;
    ZELKStatusLine *m_statusLine; // owned by the window
};
