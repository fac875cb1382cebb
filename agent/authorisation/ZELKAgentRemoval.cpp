#include "ZELKAgentRemoval.h"

#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKPolkit.h"

#include <QDeadlineTimer>

#include <algorithm>

ZELKAgentRemoval::ZELKAgentRemoval(const QDBusConnection &bus, const ZELKInstalledAgent &place,
                                   QObject *parent, int timeoutMilliseconds)
    : QObject(parent)
    , m_bus(bus)
    , m_timeout(timeoutMilliseconds)
    , m_check(bus, {timeoutMilliseconds})
    , m_files(place)
{
}

/// polkit may not ask the user here: the caller waits for an answer, and has asked for the right before.
void ZELKAgentRemoval::removeAgentFiles(const QByteArray &authorization, const QDBusMessage &call)
{
    const QDeadlineTimer deadline(m_timeout);
    m_check.check(authorization, call.service(), ZELKPolkit::modifyAction(), false,
                  [this, call, deadline](const QString &problem) {
                      if (problem.isEmpty()) {
                          m_files.remove(std::max(0, int(deadline.remainingTime())),
                                         [this, call](bool removed) { reply(call, removed); });
                          return;
                      }
                      ZELKConsole::log(ZELKFormat("The agent's files are not removed: %@.", {problem}));
                      m_bus.send(call.createReply(false));
                  });
}

void ZELKAgentRemoval::reply(const QDBusMessage &call, bool removed)
{
    if (!removed)
        ZELKConsole::log(QStringLiteral("The agent's files could not be removed."));
    m_bus.send(call.createReply(removed));
    if (removed)
        m_files.finish();
}
