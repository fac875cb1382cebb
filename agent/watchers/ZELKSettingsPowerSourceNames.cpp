#include "ZELKSettingsPowerSourceNames.h"

#include "ZELKUserDefaults.h"

namespace {

constexpr QLatin1String key("powerSourceNames"); // device, name and model of each in turn
constexpr qsizetype textsASource = 3;

} // namespace

ZELKSettingsPowerSourceNames::ZELKSettingsPowerSourceNames(ZELKUserDefaults &settings)
    : m_settings(settings)
{
}

/// What a hand has changed so that it makes no sense, is nothing.
ZELKPowerSourceNameMemory::Names ZELKSettingsPowerSourceNames::recall() const
{
    const QStringList texts = m_settings.value(key).toStringList();
    Names names;
    if (texts.size() % textsASource != 0 || texts.contains(QString()))
        return names;
    for (qsizetype at = 0; at < texts.size(); at += textsASource)
        names[texts.at(at)] = {texts.at(at + 1), texts.at(at + 2)};
    return names;
}

void ZELKSettingsPowerSourceNames::remember(const Names &names)
{
    QStringList texts;
    for (const auto &[device, given] : names)
        texts += {device, given.name, given.model};
    m_settings.setValue(key, texts);
}
