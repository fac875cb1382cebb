#pragma once

#include "ZELKAgentError.h"
#include "ZELKLogTable.h"

#include <QObject>

#include <memory>
#include <vector>

class QMainWindow;
class ZELKApplicationWiring;
class ZELKEmptyPage;
class ZELKInspectorWiring;
class ZELKLWCWelcomeController;
class ZELKStatusLine;
class ZELKWindowState;

/// The main window: the visible entries as a graph and as a table, the date range that chooses them, and the
/// agent's state with what starts, stops and updates it. The controller puts its parts together; each looks
/// after itself. While it lives it also shows what guards catch.
class ZELKLWCMainWindowController : public QObject
{
    Q_OBJECT

public:
    /// Loads the window from the main bundle, hidden. `wiring` must outlive the controller.
    explicit ZELKLWCMainWindowController(ZELKApplicationWiring &wiring, QObject *parent = nullptr);
    ~ZELKLWCMainWindowController() override;

    QMainWindow *window() const { return m_window.get(); }
    /// Whether anything was recorded is not known yet, and nothing is said of it.
    void showWindow();
    /// The cache was read: what there is to say of an empty log is true now.
    void applicationDidFinishLaunching();
    /// Remembers how the user arranged the window.
    void saveState();
    /// Window-modal; does not wait.
    void presentError(const ZELKAgentError &error);

    ZELKLogTable &table() { return m_table; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// They end from the last to the first, and all before the table and the window's widgets, which they
    /// use: a window that only has them as children deletes its widgets first.
    struct Parts
    {
        ~Parts();
        std::vector<std::unique_ptr<QObject>> made;
    };

    template <typename Part, typename... Outlets>
    Part *makePart(Outlets &&...outlets);
    void makeParts();
    void connectGraph();
    void orderTabs(QList<QWidget *> controls) const;
    void fitFont();
    void follow();
    void updatePage();
    bool hasPicture() const;
    void showEmptyPage();
    void showPageOfEmptyLog();
    template <typename Type>
    Type *outlet(const char *name) const;

    ZELKApplicationWiring &m_wiring;
    std::unique_ptr<QMainWindow> m_window;
    ZELKLogTable m_table;
    Parts m_parts;
    ZELKEmptyPage *m_emptyPage;
    ZELKWindowState *m_state;
    ZELKStatusLine *m_statusLine = nullptr;
    ZELKInspectorWiring *m_inspector = nullptr;
    ZELKLWCWelcomeController *m_welcome = nullptr; // owned by the graph
    bool m_hasFinishedLaunching = false;
};
