#include "ZELKLWCDuration.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKValue.h"

// What becomes of an entry outside: a line of text, or a dictionary.

namespace {

constexpr QLatin1String separator(", ");

bool isDictionary(const QVariant &value)
{
    return value.userType() == qMetaTypeId<ZELKDictionary>();
}

bool isArray(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList;
}

} // namespace

// MARK: text

QString ZELKLWCLogEntry::attributeDictionaryToString(const ZELKDictionary &dictionary)
{
    QStringList items;
    for (const auto &[key, value] : dictionary)
        items.append(key + QLatin1Char(':') + ZELKValue::description(value));
    return items.join(separator);
}

QString ZELKLWCLogEntry::attributeArrayToString(const QVariantList &array)
{
    QStringList items;
    for (const QVariant &value : array)
        if (value.isValid()) // no property list holds another
            items.append(ZELKValue::description(value));
    return items.join(separator);
}

QString ZELKLWCLogEntry::attributesAsString() const
{
    const ZELKEntryArena::Attributes attributes = builtAttributes();
    QStringList items;
    for (const QString &key : attributes.keys) {
        const QVariant value = attributes.values.value(key);
        if (isDictionary(value))
            items.append(key + QLatin1String(":[") +
                         attributeDictionaryToString(value.value<ZELKDictionary>()) + QLatin1Char(']'));
        else if (isArray(value))
            items.append(key + QLatin1String(":(") + attributeArrayToString(value.toList()) +
                         QLatin1Char(')'));
        else
            items.append(key);
    }
    return items.join(separator);
}

QString ZELKLWCLogEntry::stringValue() const
{
    return date().description() + QLatin1Char('\t') + summary() + QLatin1Char('\t') + attributesAsString();
}

// MARK: dictionary

ZELKDictionary ZELKLWCLogEntry::exportAsDictionary() const
{
    return {
        {QStringLiteral("Date"), QVariant::fromValue(date())},
        {QStringLiteral("Summary"), summary()},
        {QStringLiteral("Monitor"), monitor()},
        {QStringLiteral("Attributes"), QVariant::fromValue(propertyListSafeDictionary(attributeValues()))}};
}

QVariant ZELKLWCLogEntry::propertyListSafeValue(const QVariant &value)
{
    if (isDictionary(value))
        return QVariant::fromValue(propertyListSafeDictionary(value.value<ZELKDictionary>()));
    if (isArray(value))
        return propertyListSafeArray(value.toList());
    if (value.userType() == qMetaTypeId<ZELKLWCDuration>())
        return value.value<ZELKLWCDuration>().description();
    return value;
}

ZELKDictionary ZELKLWCLogEntry::propertyListSafeDictionary(const ZELKDictionary &dictionary)
{
    std::vector<ZELKDictionary::Item> items;
    items.reserve(std::size_t(dictionary.size()));
    for (const auto &[key, value] : dictionary)
        items.emplace_back(key, propertyListSafeValue(value));
    return ZELKDictionary::fromItems(std::move(items));
}

QVariantList ZELKLWCLogEntry::propertyListSafeArray(const QVariantList &array)
{
    QVariantList safe;
    safe.reserve(array.size());
    for (const QVariant &value : array)
        safe.append(propertyListSafeValue(value));
    return safe;
}
