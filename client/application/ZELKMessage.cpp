#include "ZELKMessage.h"

#include <QApplication>

void ZELKMessage::open(QWidget &window, QMessageBox::Icon icon, const QString &message,
                       const QString &informative)
{
    auto *box =
        new QMessageBox(icon, QApplication::applicationDisplayName(), message, QMessageBox::Ok, &window);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(informative);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->open();
}
