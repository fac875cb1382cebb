// The agent as a job of the user.
#include "ZELKAgentConfiguration.h"
#include "ZELKAgentInstallation.h"
#include "ZELKFileManager.h"
#include "ZELKPropertyList.h"

#include <QFile>
#include <QFileInfo>

using namespace ZELKAgentConfiguration;

namespace {

bool fail(ZELKAgentError *error, ZELKAgentError::Code code, const QString &underlying = {})
{
    if (error)
        *error = ZELKAgentError::withCode(code, underlying);
    return false;
}

std::optional<QUrl> folder(const QString &path, bool create, QString *reason)
{
    const auto problem = create ? ZELKFileManager::makeFolder(path) : std::nullopt;
    if (problem && reason)
        *reason = *problem;
    if (problem)
        return std::nullopt;
    return QUrl::fromLocalFile(path);
}

/// A job's template; throws when it is there and cannot be read.
std::optional<ZELKDictionary> jobTemplate()
{
    const QString path = mainBundle().pathForResource(QStringLiteral("agent"), QStringLiteral("plist"));
    if (path.isEmpty())
        return std::nullopt;
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const auto result = ZELKPropertyList::read({bytes.constData(), std::size_t(bytes.size())});
    if (result.value.metaType() != QMetaType::fromType<ZELKDictionary>())
        ZELKAgentConfiguration::fail(ZELKFormat("%@ plist is malformed: %@",
                                                {className(), result.error.isEmpty() ? path : result.error}));
    return result.value.value<ZELKDictionary>();
}

} // namespace

std::optional<QUrl> ZELKAgentInstallation::applicationSupportURLWithCreate(bool create, QString *reason) const
{
    QString name =
        mainBundle().infoDictionary().string(QStringLiteral("ZELKAgentControllerApplicationSupportFolder"));
    if (name.isEmpty())
        name = mainBundle().bundleIdentifier();
    return folder(m_ports.folders.applicationSupport + QLatin1Char('/') + name, create, reason);
}

std::optional<QUrl> ZELKAgentInstallation::launchAgentsFolderURLWithCreate(bool create, QString *reason) const
{
    const QString key = QStringLiteral("ZELKAgentControllerLaunchAgentsFolder");
    const QString name = mainBundle().infoDictionary().string(key);
    if (name.isEmpty())
        ZELKAgentConfiguration::fail(ZELKFormat("%@ Info.plist missing %@", {className(), key}));
    return folder(m_ports.folders.library + QLatin1Char('/') + name, create, reason);
}

std::optional<QUrl> ZELKAgentInstallation::launchdJobTicketURLForAgentName(const QString &anAgentName,
                                                                           bool create, QString *reason) const
{
    require(!anAgentName.isNull(), "anAgentName");
    const auto place = launchAgentsFolderURLWithCreate(create, reason);
    if (!place)
        return std::nullopt;
    return QUrl::fromLocalFile(place->toLocalFile() + QLatin1Char('/') + anAgentName +
                               QStringLiteral(".plist"));
}

QString ZELKAgentInstallation::launchdJobTicketLabelForAgent(const QUrl &anAgentURL) const
{
    require(!anAgentURL.isEmpty(), "anAgentURL");
    return QFileInfo(anAgentURL.toLocalFile()).completeBaseName();
}

std::optional<ZELKDictionary> ZELKAgentInstallation::launchdJobTicketForAgent(const QUrl &anAgentURL) const
{
    const QString label = launchdJobTicketLabelForAgent(anAgentURL);
    std::optional<ZELKDictionary> ticket = jobTemplate();
    if (!ticket)
        return std::nullopt;
    const QString program = ZELKBundle(anAgentURL.toLocalFile()).executablePath();
    if (program.isEmpty())
        ZELKAgentConfiguration::fail(
            ZELKFormat("%@ bundle is malformed %@", {className(), anAgentURL.toString()}));
    ticket->insert(QStringLiteral("Label"), label);
    ticket->insert(QStringLiteral("ProgramArguments"), QVariantList{program});
    return ticket;
}

QUrl ZELKAgentInstallation::agentCopyURL(const QUrl &applicationSupport) const
{
    return QUrl::fromLocalFile(applicationSupport.toLocalFile() + QLatin1Char('/') +
                               embeddedAgentURL().fileName());
}

bool ZELKAgentInstallation::startUserWithError(ZELKAgentError *error)
{
    if (!isAvailable(ZELKServiceDomain::User)) {
        // Nothing is copied for a job that cannot be: what there is tells why itself.
        const auto failure = m_ports.serviceManagement->submitJob({}, ZELKServiceDomain::User, {});
        return fail(error, ZELKAgentError::SubmitFailed, failure ? failure->fullText() : QString());
    }
    QString reason;
    const auto support = applicationSupportURLWithCreate(true, &reason);
    if (!support)
        return fail(error, ZELKAgentError::NoApplicationSupportFolder, reason);
    const QUrl copy = agentCopyURL(*support);
    if (const auto problem =
            ZELKFileManager::copyFolder(embeddedAgentURL().toLocalFile(), copy.toLocalFile()))
        return fail(error, ZELKAgentError::AgentNotCopied, *problem);
    const auto ticket = launchdJobTicketForAgent(copy);
    if (!ticket)
        return fail(error, ZELKAgentError::NoJobTicket);
    if (!writeTicket(*ticket, error))
        return false;
    const ZELKAuthorization authorization =
        m_ports.authorization ? m_ports.authorization->authorization() : ZELKAuthorization();
    if (authorization.isNull())
        return fail(error, ZELKAgentError::NoAuthorization);
    if (const auto failure =
            m_ports.serviceManagement->submitJob(*ticket, ZELKServiceDomain::User, authorization))
        return fail(error, ZELKAgentError::SubmitFailed, failure->fullText());
    return true;
}

bool ZELKAgentInstallation::writeTicket(const ZELKDictionary &ticket, ZELKAgentError *error) const
{
    QString reason;
    const auto file = launchdJobTicketURLForAgentName(ticket.string(QStringLiteral("Label")), true, &reason);
    if (!file)
        return fail(error, ZELKAgentError::NoLaunchAgentsFolder, reason);
    const auto written = ZELKPropertyList::writeXml(QVariant::fromValue(ticket));
    if (!written.error.isEmpty() || ZELKFileManager::writeFile(file->toLocalFile(), written.bytes))
        return fail(error, ZELKAgentError::TicketNotWritten);
    return true;
}

bool ZELKAgentInstallation::stopUserWithError(ZELKAgentError *error)
{
    const QString copy = agentCopyURL(*applicationSupportURLWithCreate(false)).toLocalFile();
    if (QFileInfo(copy).isDir()) {
        if (const auto problem = ZELKFileManager::remove(copy))
            return fail(error, ZELKAgentError::AgentCopyNotRemoved, *problem);
    }
    const QString ticket = launchdJobTicketURLForAgentName(agentName(), false)->toLocalFile();
    if (QFileInfo::exists(ticket) && !QFileInfo(ticket).isDir()) {
        if (const auto problem = ZELKFileManager::remove(ticket))
            return fail(error, ZELKAgentError::TicketNotRemoved, *problem);
    }
    return removeUserJob(error);
}

bool ZELKAgentInstallation::removeUserJob(ZELKAgentError *error)
{
    if (!isLaunchdJobForAgentName(agentName(), ZELKServiceDomain::User))
        return true;
    const ZELKAuthorization authorization =
        m_ports.authorization ? m_ports.authorization->authorization() : ZELKAuthorization();
    if (const auto failure =
            m_ports.serviceManagement->removeJob(agentName(), ZELKServiceDomain::User, authorization))
        return fail(error, ZELKAgentError::UserJobNotRemoved, failure->fullText());
    return true;
}
