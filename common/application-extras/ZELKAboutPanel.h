#pragma once

#include <QIcon>
#include <QPointer>
#include <QString>

class QDialog;
class QWidget;
class ZELKBundle;

/// What this program is, in a panel that stands beside the window until it is closed.
class ZELKAboutPanel
{
public:
    /// `bundle` must outlive the panel.
    ZELKAboutPanel(const ZELKBundle &bundle, const QIcon &icon);
    ~ZELKAboutPanel();

    /// Brings it before the window; a panel that is open already is only raised.
    void orderFront(QWidget &window);

private:
    QDialog *load(QWidget &window) const;

    const ZELKBundle &m_bundle;
    QIcon m_icon;
    QPointer<QDialog> m_panel; // owned by the window
};
