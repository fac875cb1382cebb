#include "ZELKCommandLineText.h"

#include "ZELKEnvironment.h"

QString ZELKCommandLineText(const char *key)
{
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(QString::fromUtf8(key), {},
                                                                        QStringLiteral("ZELKCommandLine"));
}
