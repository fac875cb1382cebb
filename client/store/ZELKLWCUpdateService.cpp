#include "ZELKLWCUpdateService.h"

#include "ZELKAssertion.h"

ZELKLWCUpdateService::ZELKLWCUpdateService(std::function<void()> eventsDidChange)
{
    new ZELKLWCUpdateAdaptor(this, std::move(eventsDidChange));
}

bool ZELKLWCUpdateService::registerOn(QDBusConnection bus, const QString &path)
{
    return bus.registerObject(path, this, QDBusConnection::ExportAdaptors);
}

ZELKLWCUpdateAdaptor::ZELKLWCUpdateAdaptor(QObject *service, std::function<void()> eventsDidChange)
    : QDBusAbstractAdaptor(service)
    , m_eventsDidChange(std::move(eventsDidChange))
{
}

void ZELKLWCUpdateAdaptor::eventsDidChange()
{
    zelkGuard(m_eventsDidChange);
}
