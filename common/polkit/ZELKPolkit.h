#pragma once

#include "ZELKAuthorizationForm.h"

#include <QDBusMessage>
#include <QString>

#include <optional>

/// The one question that is asked of polkit: may this process do that?
namespace ZELKPolkit {

/// Install the recording agent for the whole computer; change or remove it. The names of our actions.
inline QString blessAction()
{
    return QStringLiteral("org.zelk.lullwatch.bless");
}
inline QString modifyAction()
{
    return QStringLiteral("org.zelk.lullwatch.modify");
}

/// The call whose reply answer() reads. With `mayAsk`, polkit asks the user for a password if it has to, and
/// the reply comes when the user is done.
QDBusMessage question(const ZELKAuthorizationForm &process, const QString &action, bool mayAsk);

struct Answer
{
    bool isAuthorized = false;
    bool wouldAsk = false; ///< with a password it might be; when it may ask: nobody is there who would ask
    bool wasDismissed = false; ///< the user was asked, and gave none
};
/// Nothing when the reply is an error or is not polkit's.
std::optional<Answer> answer(const QDBusMessage &reply);
/// polkit answered that it knows no such action: our policy is not installed.
bool isUnknownAction(const QDBusMessage &reply);

} // namespace ZELKPolkit
