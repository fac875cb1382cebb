#pragma once

#include "ZELKDate.h"
#include "ZELKLWCRelativeDateFormatter.h"

#include <QObject>
#include <QString>

class QLabel;
class QLineEdit;
class QMainWindow;
class QWidget;
class ZELKApplicationWiring;
class ZELKElidedLabel;
class ZELKSymbolLabel;

/// The main window's status bar: what the agent does, how many entries there are, and when the agent was last
/// asked for new ones; above it, what went wrong last.
class ZELKStatusLine : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. Both outlive the line.
    ZELKStatusLine(QMainWindow &window, ZELKApplicationWiring &wiring);

    /// Stands, with its time, until events are fetched successfully.
    void showFailure(const QString &message);

private:
    void fillStatusBar(QMainWindow &window);
    void follow();
    void updateState();
    void updateCount();
    void updateSynchronisation();
    void fetchFinished(bool complete);
    QString fetchFailure();
    void clearFailure();
    void setFailureText(const QString &text);

    ZELKApplicationWiring &m_wiring;
    ZELKLWCRelativeDateFormatter m_dates;
    ZELKDate m_synchronised = ZELKDate::distantPast(); // in this run
    ZELKSymbolLabel *m_stateIcon;
    QLabel *m_stateLabel;
    QLabel *m_countLabel;
    ZELKElidedLabel *m_synchronisationLabel;
    QWidget *m_failure;
    QLineEdit *m_failureLine;    // whose keys reach all of a long text
    bool m_failureIsNew = false; // since the last fetch ended
};
