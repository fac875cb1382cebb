#pragma once

#include <QList>
#include <QObject>

class QAction;
class QMainWindow;
class QToolBar;
class QWidget;
class ZELKBundle;

/// The main window's tool bar: the pop-up of presets, the moves of the range, and the button that starts and
/// stops the agent. Interface files cannot put other widgets than buttons into a tool bar, so it is put
/// together here.
class ZELKToolBar : public QObject
{
    Q_OBJECT

public:
    /// Makes the widgets, by the names that their outlets look for. `window` outlives the tool bar.
    ZELKToolBar(QMainWindow &window, const ZELKBundle &bundle);

    /// Puts everything into its place, once all actions are there. Each button can be reached by Tab, and its
    /// hint names the key that does the same.
    void fill();
    /// What can have the focus, from first to last.
    QList<QWidget *> controls() const { return m_controls; }

private:
    void addPopUp();
    void addWidgets(const char *layoutName, const QList<QWidget *> &widgets);
    void addButtons(const QList<const char *> &actions);
    void addButton(QAction &action);
    void addAgentButton();
    void dressOverflow();

    QMainWindow &m_window;
    const ZELKBundle &m_bundle;
    QToolBar *m_bar;
    QList<QWidget *> m_controls;
};
