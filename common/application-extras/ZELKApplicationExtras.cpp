#include "ZELKApplicationExtras.h"

#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKMessage.h"

#include <QAction>
#include <QDesktopServices>
#include <QMenu>
#include <QPointer>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

QString text(const char *topic)
{
    return ZELKInterfaceLoader::textOfTopic(QStringLiteral("ZELKApplicationExtras"), topic);
}

/// What stands first behind the first separator; null for the end.
QAction *placeAfterSeparator(const QMenu &menu)
{
    const QList<QAction *> actions = menu.actions();
    const auto separator = std::find_if(actions.begin(), actions.end(),
                                        [](const QAction *action) { return action->isSeparator(); });
    return separator == actions.end() || separator + 1 == actions.end() ? nullptr : *(separator + 1);
}

} // namespace

ZELKApplicationExtras::ZELKApplicationExtras(const World &world, ZELKUserDefaults &defaults, QObject *parent)
    : QObject(parent)
    , m_world(world)
    , m_about(world.bundle, world.icon)
{
    if (world.offer)
        m_offer = std::make_unique<ZELKApplicationsMenuOffer>(*world.offer, defaults);
}

void ZELKApplicationExtras::insertItems(QMenu &menu, QWidget &window)
{
    QAction *place = placeAfterSeparator(menu);
    auto *updates = new QAction(text("checkForUpdates"), &menu);
    updates->setObjectName(QStringLiteral("actionCheckForUpdates"));
    updates->setToolTip(text("checkForUpdates.toolTip"));
    updates->setMenuRole(QAction::ApplicationSpecificRole);
    connect(updates, &QAction::triggered, this,
            [this, &window] { zelkGuard([&] { checkForUpdates(window); }); });
    menu.insertAction(place, updates);
    const QVariantList items =
        m_world.bundle.objectForInfoDictionaryKey(QStringLiteral("ZELKApplicationExtrasItems")).toList();
    for (const QVariant &item : items) {
        const auto described = item.value<ZELKDictionary>();
        const QUrl url(described.string(QStringLiteral("url")));
        auto *action = new QAction(described.string(QStringLiteral("title")), &menu);
        action->setMenuRole(QAction::ApplicationSpecificRole);
        connect(action, &QAction::triggered, this, [url] { QDesktopServices::openUrl(url); });
        menu.insertAction(place, action);
    }
}

void ZELKApplicationExtras::offerToMoveToApplicationsFolder(QWidget &window)
{
    if (m_offer)
        m_offer->offer(window);
}

// MARK: updates

void ZELKApplicationExtras::checkForUpdates(QWidget &window)
{
    if (std::exchange(m_isChecking, true))
        return;
    auto *check =
        new ZELKUpdateCheck({m_world.executable, m_world.bundle.bundleIdentifier(),
                             m_world.bundle.infoDictionary().string(QStringLiteral("CFBundleVersion"))},
                            m_world.run, this);
    connect(check, &ZELKUpdateCheck::finished, this,
            [this, check, window = QPointer(&window)](const ZELKUpdateCheck::Answer &answer) {
                m_isChecking = false;
                check->deleteLater();
                zelkGuard([&] {
                    if (window)
                        tellUpdates(*window, answer);
                });
            });
    check->start();
}

void ZELKApplicationExtras::tellUpdates(QWidget &window, const ZELKUpdateCheck::Answer &answer) const
{
    using Kind = ZELKUpdateCheck::Answer::Kind;
    const ZELKDictionary &info = m_world.bundle.infoDictionary();
    const QString name = info.string(QStringLiteral("CFBundleName"));
    const QString version = info.string(QStringLiteral("CFBundleVersion"));
    QString message = ZELKFormat(text("updates.unknown"), {name, version});
    QString informative = text("updates.unknown.informative");
    if (answer.kind == Kind::Newest) {
        message = ZELKFormat(text("updates.newest"), {name, answer.version});
        informative = ZELKFormat(text("updates.source"), {answer.source});
    } else if (answer.kind == Kind::Newer) {
        message = ZELKFormat(text("updates.newer"), {name, answer.version});
        informative = ZELKFormat(text("updates.newer.informative"), {version, answer.source});
    }
    ZELKMessage::open(window, QMessageBox::Information, message, informative);
}
