#include "ZELKUserDefaults.h"

#include "ZELKAssertion.h"
#include "ZELKValue.h"

#include <utility>
#include <vector>

namespace {

bool isText(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<QString>();
}

/// The file keeps numbers and booleans as texts; such a text is the value that it was.
QVariant asNumber(const QVariant &value)
{
    if (!isText(value))
        return value;
    const QString text = value.toString();
    if (text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    return text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0 ? QVariant(false) : value;
}

bool isSameSetting(const QVariant &a, const QVariant &b)
{
    if (!a.isValid() || !b.isValid())
        return a.isValid() == b.isValid();
    if (isText(a) != isText(b))
        return a.canConvert<QString>() && b.canConvert<QString>() && a.toString() == b.toString();
    return ZELKValue::isEqual(a, b);
}

} // namespace

ZELKUserDefaults::ZELKUserDefaults(const QString &path, QObject *parent)
    : QObject(parent)
    , m_settings(path, QSettings::IniFormat)
{
}

void ZELKUserDefaults::registerDefaults(const ZELKDictionary &defaults)
{
    std::vector<std::pair<QString, QVariant>> changed;
    for (const auto &[key, registered] : defaults) {
        const QVariant before = value(key);
        m_registered.insert(key, registered);
        if (!isSameSetting(before, value(key)))
            changed.emplace_back(key, value(key));
    }
    for (const auto &[key, now] : changed)
        Q_EMIT valueChanged(key, now);
}

QVariant ZELKUserDefaults::value(const QString &key) const
{
    return m_settings.contains(key) ? m_settings.value(key) : m_registered.value(key);
}

double ZELKUserDefaults::doubleForKey(const QString &key) const
{
    return ZELKValue::doubleValue(asNumber(value(key)));
}

int ZELKUserDefaults::integerForKey(const QString &key) const
{
    return ZELKValue::intValue(asNumber(value(key)));
}

bool ZELKUserDefaults::boolForKey(const QString &key) const
{
    return doubleForKey(key) != 0.0;
}

void ZELKUserDefaults::setValue(const QString &key, const QVariant &newValue)
{
    const QVariant before = value(key);
    if (!newValue.isValid())
        m_settings.remove(key);
    else if (newValue.metaType().hasRegisteredDataStreamOperators())
        m_settings.setValue(key, newValue);
    else
        ZELKAssertion::failParameter(QStringLiteral("common/foundation/ZELKUserDefaults"), 0, "value");
    const QVariant now = value(key);
    if (!isSameSetting(before, now))
        Q_EMIT valueChanged(key, now);
}
