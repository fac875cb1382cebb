#include "ZELKAgentConfiguration.h"

#include "ZELKEnvironment.h"

namespace {

QString sourceFile()
{
    return QStringLiteral("common/agent/ZELKAgentController");
}

} // namespace

QString ZELKAgentConfiguration::className()
{
    return QStringLiteral("ZELKAgentController");
}

const ZELKBundle &ZELKAgentConfiguration::mainBundle()
{
    return *ZELKEnvironment::current().mainBundle;
}

QString ZELKAgentConfiguration::infoString(const QString &key)
{
    const QVariant value = mainBundle().objectForInfoDictionaryKey(key);
    if (!value.isValid())
        fail(ZELKFormat("%@ Info.plist is missing %@", {className(), key}));
    if (value.metaType() != QMetaType::fromType<QString>())
        fail(ZELKFormat("%@ Info.plist %@ must be a string", {className(), key}));
    return value.toString();
}

QString ZELKAgentConfiguration::localised(const QString &key)
{
    return mainBundle().localizedStringForKey(key, QString(), className());
}

QString ZELKAgentConfiguration::localisedWithNumber(const char *keyFormat, int number)
{
    return localised(ZELKFormat(keyFormat, {className(), number}));
}

void ZELKAgentConfiguration::fail(const QString &message)
{
    ZELKAssertion::fail(sourceFile(), 0, message);
}

void ZELKAgentConfiguration::require(bool isThere, const char *parameter)
{
    if (!isThere)
        ZELKAssertion::failParameter(sourceFile(), 0, parameter);
}
