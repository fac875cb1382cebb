#pragma once

#include <QMessageBox>

/// Messages on a window, which nobody waits for.
namespace ZELKMessage {

/// Window-modal, with plain texts; goes when it is closed.
void open(QWidget &window, QMessageBox::Icon icon, const QString &message, const QString &informative);

} // namespace ZELKMessage
