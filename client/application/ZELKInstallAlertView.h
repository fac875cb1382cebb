#pragma once

#include "ZELKAgentAlert.h"

#include <QObject>

class QComboBox;
class QLabel;
class QWidget;
class ZELKAgentInstallation;

/// The install alert's accessory view: the pop-up with the places where the agent can be installed, what the
/// chosen one means, and why places cannot be had on this computer.
class ZELKInstallAlertView : public QObject
{
    Q_OBJECT

public:
    /// Loads the interface file of that name from the main bundle; faults of it raise ZELKAgentAlert's
    /// failures. Asks `agent` which places there are, which blocks for a call to the service managers.
    ZELKInstallAlertView(const QString &interfaceName, const ZELKAgentInstallation &agent, QWidget *parent);

    /// A child of the constructor's parent.
    QWidget *view() const { return m_view; }
    /// The tag of the selected place; 0 without one.
    int locationTag() const;
    /// False where nothing can be installed at all.
    bool hasOffer() const;

private:
    void fillPopUp(const ZELKAgentInstallation &agent);
    void disable(int index);
    void showAbsence();
    void showMeaning();

    QWidget *m_view;
    QComboBox *m_popUp;
    QLabel *m_meaning; // null where the interface file has none
    QLabel *m_absence; // the same
};
