#pragma once

#include <QObject>
#include <QString>

class QLabel;
class QLineEdit;
class QMainWindow;
class ZELKApplicationWiring;

/// The main window's last line: what the agent does, how many entries there are, when they were brought, and
/// what went wrong last.
class ZELKStatusLine : public QObject
{
    Q_OBJECT

public:
    /// Outlets are looked up by name; those that are missing raise. Both outlive the line.
    ZELKStatusLine(QMainWindow &window, ZELKApplicationWiring &wiring);

    /// Stands, with its time, until events are fetched successfully.
    void showFailure(const QString &message);

private:
    void follow();
    void updateState();
    void updateCount();
    void updateSynchronisation();
    void fetchFinished(bool complete);
    QString fetchFailure();
    void clearFailure();
    void setFailureText(const QString &text);

    ZELKApplicationWiring &m_wiring;
    QLabel *m_stateLabel;
    QLabel *m_countLabel;
    QLabel *m_synchronisationLabel;
    QLabel *m_failureIcon;
    QLineEdit *m_failureLine;    // whose keys reach all of a long text
    bool m_failureIsNew = false; // since the last fetch ended
};
