#include "ZELKLWADefaults.h"

#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKUserDefaults.h"

#include <algorithm>
#include <array>

namespace {

struct Known
{
    QLatin1String key;
    int least;
    int most;
    int usual;
};

constexpr QLatin1String powerSupplyIntervalKey("powerSupplyInterval");
constexpr std::array<Known, 1> knownDefaults{{{powerSupplyIntervalKey, 10, 3600, 60}}};

const Known *find(const QString &key)
{
    const auto known = std::find_if(knownDefaults.begin(), knownDefaults.end(),
                                    [&](const Known &it) { return it.key == key; });
    return known == knownDefaults.end() ? nullptr : &*known;
}

bool isWholeNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

} // namespace

ZELKLWADefaults::ZELKLWADefaults(ZELKUserDefaults &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
{
    for (const Known &known : knownDefaults)
        m_settings.registerDefaults({{known.key, known.usual}});
}

void ZELKLWADefaults::setDefaultsWithDictionary(const QVariantMap &defaults)
{
    for (auto entry = defaults.begin(); entry != defaults.end(); ++entry)
        set(entry.key(), entry.value());
}

void ZELKLWADefaults::set(const QString &key, const QVariant &value)
{
    const Known *known = find(key);
    if (!known) {
        ZELKConsole::log(ZELKFormat("Default '%@' is not known to the agent.", {key}));
        return;
    }
    bool ok = false;
    const qlonglong number = value.toLongLong(&ok);
    if (!isWholeNumber(value) || !ok || number < known->least || number > known->most) {
        ZELKConsole::log(ZELKFormat("Default '%@' must be a whole number from %d to %d.",
                                    {key, known->least, known->most}));
        return;
    }
    m_settings.setValue(key, int(number));
    if (known->key == powerSupplyIntervalKey)
        Q_EMIT powerSupplyIntervalChanged(int(number));
}

/// What stands in the settings file may have been written by anybody.
int ZELKLWADefaults::powerSupplyInterval() const
{
    const Known &known = *find(powerSupplyIntervalKey);
    const int seconds = m_settings.integerForKey(powerSupplyIntervalKey);
    return seconds < known.least || seconds > known.most ? known.usual : seconds;
}
