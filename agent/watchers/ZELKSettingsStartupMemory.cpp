#include "ZELKSettingsStartupMemory.h"

#include "ZELKRawEvent.h"
#include "ZELKUserDefaults.h"

namespace {

constexpr QLatin1String key("startup"); // "BOOT-ID DATE boot", the last word only where it is told

} // namespace

ZELKSettingsStartupMemory::ZELKSettingsStartupMemory(ZELKUserDefaults &settings)
    : m_settings(settings)
{
}

std::optional<ZELKStartup> ZELKSettingsStartupMemory::recall(const QString &bootID) const
{
    const QStringList words = m_settings.stringForKey(key).split(QLatin1Char(' '));
    if (words.size() < 2 || words.at(0) != bootID || !ZELKIsDateText(words.at(1).toStdString()))
        return std::nullopt;
    return ZELKStartup{ZELKDate(words.at(1).toDouble()), words.value(2) == QLatin1String("boot")};
}

void ZELKSettingsStartupMemory::remember(const QString &bootID, const ZELKStartup &startup)
{
    m_settings.setValue(
        key, QStringLiteral("%1 %2%3").arg(bootID, ZELKDateText(startup.date),
                                           startup.tellsBoot ? QStringLiteral(" boot") : QString()));
}
