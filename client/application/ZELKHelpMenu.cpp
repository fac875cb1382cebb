#include "ZELKHelpMenu.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKMessage.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QRandomGenerator>

ZELKHelpMenu::ZELKHelpMenu(QMainWindow &window, ZELKApplicationWiring &wiring)
    : QObject(&window)
    , m_window(window)
    , m_wiring(wiring)
    , m_addressBook(QDBusConnection::systemBus())
{
    connectGuide();
    connectFeedback();
    connectAbout();
}

/// The sheet stands on the window and uses what belongs to the menu.
ZELKHelpMenu::~ZELKHelpMenu()
{
    m_wiring.delegate().setFeedbackWorld(std::nullopt);
}

QAction &ZELKHelpMenu::action(const char *name) const
{
    return *ZELKMainWindowInterface::outlet<QAction>(m_window, name);
}

void ZELKHelpMenu::onTriggered(QAction &action, const std::function<void()> &perform)
{
    connect(&action, &QAction::triggered, this, [perform] { zelkGuard(perform); });
}

void ZELKHelpMenu::connectGuide()
{
    QAction &guide = action("actionUserGuide");
    ZELKLWClientAppDelegate &delegate = m_wiring.delegate();
    guide.setEnabled(delegate.canOpenUserGuide());
    connect(&delegate, &ZELKLWClientAppDelegate::canOpenUserGuideChanged, &guide, &QAction::setEnabled);
    onTriggered(guide, [&delegate] { delegate.openUserGuide(); });
}

void ZELKHelpMenu::connectFeedback()
{
    const ZELKBundle &bundle = *m_wiring.settings().bundle;
    m_wiring.delegate().setFeedbackWorld(
        ZELKFeedbackController::World{bundle, m_network, m_addressBook,
                                      [] {
                                          const auto entry = ZELKAccountEntry::ofThisUser();
                                          return entry ? entry->fullName : QString();
                                      },
                                      [] { return long(QRandomGenerator::global()->generate() >> 1); }});
    QAction &feedback = action("actionFeedback");
    const bool hasAddress = !ZELKFeedbackController::address(bundle).isEmpty();
    feedback.setEnabled(hasAddress);
    feedback.setToolTip(
        ZELKMainWindowInterface::text(hasAddress ? "feedback.toolTip" : "feedback.noAddress"));
    onTriggered(feedback, [this] { m_wiring.delegate().feedback(); });
}

void ZELKHelpMenu::connectAbout()
{
    onTriggered(action("actionAbout"), [this] { showAbout(); });
    onTriggered(action("actionAboutQt"), [] { QApplication::aboutQt(); });
}

void ZELKHelpMenu::showAbout()
{
    const QString version =
        m_wiring.settings().bundle->infoDictionary().string(QStringLiteral("CFBundleVersion"));
    ZELKMessage::open(m_window, QMessageBox::Information,
                      ZELKFormat(ZELKMainWindowInterface::text("about"), {version}),
                      ZELKMainWindowInterface::text("about.informative"));
}
