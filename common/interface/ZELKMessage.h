#pragma once

#include <QMessageBox>

/// Messages on a window, which nobody waits for.
namespace ZELKMessage {

/// Window-modal, with plain texts, titled as the application; goes when it is closed. The window owns it. It
/// is not shown yet, so that more can be put onto it.
QMessageBox *make(QWidget &window, QMessageBox::Icon icon, const QString &message, const QString &informative,
                  QMessageBox::StandardButtons buttons = QMessageBox::NoButton);
/// Shown, with a button that closes it.
void open(QWidget &window, QMessageBox::Icon icon, const QString &message, const QString &informative);

} // namespace ZELKMessage
