#include "ZELKHelpMenu.h"

#include "ZELKApplicationExtras.h"
#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKMessage.h"
#include "ZELKSampleLog.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QProcess>
#include <QRandomGenerator>

namespace {

ZELKApplicationsMenuOffer::World offerWorld(const ZELKApplicationsMenu::Folders &folders,
                                            const ZELKBundle &bundle, const QString &icon)
{
    return {ZELKApplicationsMenu(folders),
            {bundle.bundleIdentifier(), bundle.infoDictionary().string(QStringLiteral("CFBundleName")),
             ZELKMainWindowInterface::text("menuComment"), QCoreApplication::applicationFilePath(), icon},
            [](const QStringList &command) {
                return !command.isEmpty() && QProcess::startDetached(command.first(), command.mid(1));
            },
            [] { QCoreApplication::quit(); }};
}

ZELKApplicationExtras::World extrasWorld(const ZELKApplicationWiring &wiring)
{
    const ZELKBundle &bundle = *wiring.settings().bundle;
    const QString icon = bundle.pathForResource(QStringLiteral("icons/lullwatch"), QStringLiteral("svg"));
    ZELKApplicationExtras::World world{bundle, QIcon(icon), QCoreApplication::applicationFilePath()};
    if (wiring.applicationsMenu())
        world.offer = offerWorld(*wiring.applicationsMenu(), bundle, icon);
    return world;
}

} // namespace

ZELKHelpMenu::ZELKHelpMenu(QMainWindow &window, ZELKApplicationWiring &wiring)
    : QObject(&window)
    , m_window(window)
    , m_wiring(wiring)
    , m_addressBook(wiring.systemBus())
{
    connectGuide();
    connectSampleLog();
    connectFeedback();
    connectExtras();
}

/// Sheets stand on the window and use what belongs to the menu.
ZELKHelpMenu::~ZELKHelpMenu()
{
    m_wiring.delegate().setFeedbackWorld(std::nullopt);
    m_wiring.delegate().setApplicationExtras({});
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

/// In a run of its own, beside this one.
void ZELKHelpMenu::connectSampleLog()
{
    QAction &sample = action("actionOpenSampleLog");
    sample.setEnabled(m_wiring.settings().profile != ZELKSampleLog::profile());
    onTriggered(sample, [this] {
        if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), {QStringLiteral("--sample")}))
            ZELKMessage::open(m_window, QMessageBox::Warning,
                              ZELKMainWindowInterface::text("openSampleLog.failed"), {});
    });
}

void ZELKHelpMenu::connectFeedback()
{
    const ZELKBundle &bundle = *m_wiring.settings().bundle;
    // The address book knows the account; where even that is not there, this is all that is left.
    const auto loginName = [] { return qEnvironmentVariable("USER"); };
    m_wiring.delegate().setFeedbackWorld(
        ZELKFeedbackController::World{bundle, m_network, m_addressBook, loginName,
                                      [] { return long(QRandomGenerator::global()->generate() >> 1); }});
    QAction &feedback = action("actionFeedback");
    const bool hasAddress = !ZELKFeedbackController::address(bundle).isEmpty();
    feedback.setEnabled(hasAddress);
    feedback.setToolTip(
        ZELKMainWindowInterface::text(hasAddress ? "feedback.toolTip" : "feedback.noAddress"));
    onTriggered(feedback, [this] { m_wiring.delegate().feedback(); });
}

void ZELKHelpMenu::connectExtras()
{
    m_extras = std::make_shared<ZELKApplicationExtras>(extrasWorld(m_wiring), m_wiring.defaults());
    m_wiring.delegate().setApplicationExtras(m_extras);
    auto *menu = ZELKMainWindowInterface::outlet<QMenu>(m_window, "helpMenu");
    menu->setToolTipsVisible(true); // one says why reports cannot be sent
    m_extras->insertItems(*menu, m_window);
    onTriggered(action("actionAbout"), [this] { m_extras->orderFrontAboutPanel(m_window); });
    onTriggered(action("actionAboutQt"), [] { QApplication::aboutQt(); });
}
