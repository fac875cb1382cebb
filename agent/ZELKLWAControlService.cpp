#include "ZELKLWAControlService.h"

#include "ZELKAssertion.h"

ZELKLWAControlService::ZELKLWAControlService(const QString &version, ZELKLWADefaults &defaults,
                                             QObject *parent)
    : QObject(parent)
    , m_version(version)
    , m_defaults(defaults)
{
}

bool ZELKLWAControlService::removeAgentFiles(const QByteArray &)
{
    return false;
}

void ZELKLWAControlService::setDefaultsWithDictionary(const QVariantMap &defaults)
{
    zelkGuard([&] { m_defaults.setDefaultsWithDictionary(defaults); });
}
