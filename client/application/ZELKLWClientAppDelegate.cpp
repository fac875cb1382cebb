#include "ZELKLWClientAppDelegate.h"

#include "ZELKAgentController.h"
#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCStore.h"
#include "ZELKPropertyList.h"
#include "ZELKUserDefaults.h"

#include <QDesktopServices>
#include <QFile>

#include <optional>
#include <utility>

namespace {

/// Where a missing resource is reported from; the number is fixed.
constexpr int missingDefaultsLine = 33;

std::optional<ZELKDictionary> readDictionary(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    const QVariant value =
        ZELKPropertyList::read(std::string_view(bytes.constData(), std::size_t(bytes.size()))).value;
    if (value.userType() != qMetaTypeId<ZELKDictionary>())
        return std::nullopt;
    return value.value<ZELKDictionary>();
}

} // namespace

ZELKLWClientAppDelegate::ZELKLWClientAppDelegate(QObject *parent)
    : QObject(parent)
{
}

void ZELKLWClientAppDelegate::initialize(const ZELKBundle &mainBundle, ZELKUserDefaults &defaults)
{
    registerDefaults(mainBundle, defaults);
}

void ZELKLWClientAppDelegate::registerDefaults(const ZELKBundle &mainBundle, ZELKUserDefaults &defaults)
{
    const QString path = mainBundle.pathForResource(QStringLiteral("Defaults"), QStringLiteral("plist"));
    if (path.isEmpty())
        ZELKAssertion::fail(
            QStringLiteral("client/ZELKLWClientAppDelegate"), missingDefaultsLine,
            ZELKFormat("%@ Missing 'Defaults.plist'.", {QStringLiteral("ZELKLWClientAppDelegate")}));
    const std::optional<ZELKDictionary> registered = readDictionary(path);
    if (!registered)
        return;
    defaults.registerDefaults(*registered);
    const QVariantList keys = defaults.value(QStringLiteral("initialValues")).toList();
    if (keys.isEmpty())
        return;
    ZELKDictionary initialValues = defaults.initialValues();
    for (const QVariant &key : keys)
        initialValues.insert(key.toString(), registered->value(key.toString()));
    defaults.setInitialValues(initialValues);
}

void ZELKLWClientAppDelegate::applicationDidFinishLaunching()
{
    // Each step stands for itself: a cache that cannot be read does not keep the agent from being asked.
    if (m_applicationExtras && m_window)
        zelkGuard([this] { m_applicationExtras->offerToMoveToApplicationsFolder(*m_window); });
    zelkGuard([this] { m_store->syncWithLocalCache(); });
    zelkGuard([this] { m_store->sync(); });
    zelkGuard([this] { m_agentController->applicationDidFinishLaunching(); });
    const bool can = !userGuideURL().isEmpty();
    if (std::exchange(m_canOpenUserGuide, can) != can)
        Q_EMIT canOpenUserGuideChanged(can);
}

QUrl ZELKLWClientAppDelegate::userGuideURL() const
{
    const QString path = ZELKEnvironment::current().mainBundle->pathForResource(
        QStringLiteral("Lullwatch User Guide"), QStringLiteral("pdf"));
    return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
}

void ZELKLWClientAppDelegate::openUserGuide()
{
    QDesktopServices::openUrl(userGuideURL());
}

void ZELKLWClientAppDelegate::setFeedbackWorld(const std::optional<ZELKFeedbackController::World> &world)
{
    m_feedbackController.reset();
    m_feedbackWorld.reset();
    if (world)
        m_feedbackWorld.emplace(*world);
}

ZELKFeedbackController &ZELKLWClientAppDelegate::feedbackController()
{
    if (!m_feedbackController)
        m_feedbackController = ZELKFeedbackController::feedbackController(m_feedbackWorld.value());
    return *m_feedbackController;
}

void ZELKLWClientAppDelegate::feedback()
{
    feedbackController().setMessage(ZELKEnvironment::current().mainBundle->localizedStringForKey(
        QStringLiteral("ZELKLWClientAppDelegateFeedbackMessage"), {}, QStringLiteral("Localizable")));
    feedbackController().beginModalForWindow(*m_window);
}

bool ZELKLWClientAppDelegate::applicationDelegateHandlesKey(const QString &key) const
{
    return key == QLatin1String("database") || key == QLatin1String("visibleSlice");
}
