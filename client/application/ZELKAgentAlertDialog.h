#pragma once

#include "ZELKAgentAlert.h"

#include <QDialog>

class QGridLayout;
class QHBoxLayout;
class QLabel;
class QPushButton;
class ZELKAgentInstallation;
class ZELKInstallAlertView;

/// One alert on the screen. Ends with one of ZELKAgentAlert's return codes.
class ZELKAgentAlertDialog : public QDialog
{
    Q_OBJECT

public:
    /// Raises ZELKAgentAlert's failures. `agent` is asked what can be installed only when the alert has an
    /// accessory view, and not kept.
    ZELKAgentAlertDialog(const ZELKAgentAlert &alert, const ZELKAgentInstallation &agent, QWidget *parent);

    /// The tag of the place chosen in the accessory view; 0 without one.
    int locationTag() const;
    /// However it was closed: what is not the code of a button becomes the last button's.
    void done(int code) override;

Q_SIGNALS:
    void helpRequested(const QString &anchor);

private:
    void addTexts(const ZELKAgentAlert &alert, QGridLayout &layout);
    void addAccessory(const ZELKAgentAlert &alert, const ZELKAgentInstallation &agent, QGridLayout &layout);
    void addButtons(const ZELKAgentAlert &alert, QGridLayout &layout);
    void addHelpButton(const QString &anchor, QHBoxLayout &row);
    void chooseDefault();

    QList<QPushButton *> m_buttons;
    ZELKInstallAlertView *m_accessory = nullptr;
};
