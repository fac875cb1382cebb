#pragma once

#include <QDialog>

class QProgressBar;
class QPushButton;

/// How far something is that takes its time, with a button to cancel it. Rejected when that is pressed; the
/// rest is the owner's.
class ZELKProgressSheet : public QDialog
{
    Q_OBJECT

public:
    /// Plain text.
    ZELKProgressSheet(const QString &title, const QString &text, QWidget *window);

    /// From 0 to 1.
    void setFraction(double fraction);
    /// False: from here on it cannot be undone.
    void setCancellable(bool can);
    void reject() override;

private:
    QProgressBar *m_bar;
    QPushButton *m_cancel;
};
