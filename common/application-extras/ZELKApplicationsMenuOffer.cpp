#include "ZELKApplicationsMenuOffer.h"

#include "ZELKAssertion.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKMessage.h"
#include "ZELKUserDefaults.h"

#include <QCheckBox>
#include <QDir>
#include <QPushButton>

#include <utility>

namespace {

QString text(const char *topic)
{
    return ZELKInterfaceLoader::textOfTopic(QStringLiteral("ZELKApplicationsMenuOffer"), topic);
}

} // namespace

ZELKApplicationsMenuOffer::ZELKApplicationsMenuOffer(World world, ZELKUserDefaults &defaults)
    : m_world(std::move(world))
    , m_defaults(defaults)
{
}

void ZELKApplicationsMenuOffer::offer(QWidget &window)
{
    if (m_defaults.boolForKey(QString::fromLatin1(suppressKey)) || m_world.menu.starts(m_world.application))
        return;
    QMessageBox *box = ZELKMessage::make(
        window, QMessageBox::Question, ZELKFormat(text("message"), {m_world.application.name}),
        ZELKFormat(text("informative"), {QDir::toNativeSeparators(m_world.application.executable)}));
    auto *suppress = new QCheckBox(text("suppress"), box);
    box->setCheckBox(suppress);
    QPushButton *add = box->addButton(text("add"), QMessageBox::AcceptRole);
    box->setDefaultButton(add);
    box->setEscapeButton(box->addButton(text("notNow"), QMessageBox::RejectRole));
    connect(box, &QDialog::finished, this, [this, &window, box, add] {
        zelkGuard([&] { answered(window, *box, box->clickedButton() == add); });
    });
    box->open();
}

void ZELKApplicationsMenuOffer::answered(QWidget &window, const QMessageBox &box, bool isAccepted)
{
    if (box.checkBox()->isChecked())
        m_defaults.setValue(QString::fromLatin1(suppressKey), true);
    if (isAccepted)
        add(window);
}

void ZELKApplicationsMenuOffer::add(QWidget &window)
{
    if (const auto failure = m_world.menu.add(m_world.application)) {
        ZELKMessage::open(window, QMessageBox::Warning,
                          ZELKFormat(text("failed"), {m_world.application.name}), *failure);
        return;
    }
    tellAdded(window);
}

void ZELKApplicationsMenuOffer::tellAdded(QWidget &window)
{
    QMessageBox *box =
        ZELKMessage::make(window, QMessageBox::Information,
                          ZELKFormat(text("added"), {m_world.application.name}), text("added.informative"));
    QPushButton *again = box->addButton(text("startAgain"), QMessageBox::AcceptRole);
    QPushButton *goOn = box->addButton(text("goOn"), QMessageBox::RejectRole);
    box->setDefaultButton(goOn);
    box->setEscapeButton(goOn);
    connect(box, &QDialog::finished, this, [this, &window, box, again] {
        zelkGuard([&] {
            if (box->clickedButton() == again)
                startAgain(window);
        });
    });
    box->open();
}

/// As the menu would; what does not start leaves this run as it is.
void ZELKApplicationsMenuOffer::startAgain(QWidget &window)
{
    if (m_world.startDetached(m_world.menu.command(m_world.application.identifier))) {
        m_world.quit();
        return;
    }
    ZELKMessage::open(window, QMessageBox::Warning, text("notStarted"), QString());
}
