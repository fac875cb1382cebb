#include "ZELKMessage.h"

#include <QGuiApplication>

QMessageBox *ZELKMessage::make(QWidget &window, QMessageBox::Icon icon, const QString &message,
                               const QString &informative, QMessageBox::StandardButtons buttons)
{
    auto *box = new QMessageBox(icon, QGuiApplication::applicationDisplayName(), message, buttons, &window);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(informative);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    return box;
}

void ZELKMessage::open(QWidget &window, QMessageBox::Icon icon, const QString &message,
                       const QString &informative)
{
    make(window, icon, message, informative, QMessageBox::Ok)->open();
}
