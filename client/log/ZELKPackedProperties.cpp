#include "ZELKPackedProperties.h"

#include "ZELKEventVocabulary.h"
#include "ZELKPackedValue.h"

#include <cstring>
#include <limits>

using namespace ZELKPackedValue;

namespace {

constexpr std::size_t mostShapes = 60000;
constexpr std::size_t mostFields = 127; // a known key's place takes one byte
constexpr qsizetype longestPooledText = 512;

void putTexts(char *at, const std::vector<Id> &texts)
{
    put(at, std::uint16_t(texts.size()));
    at += widthOf(Type::Texts);
    for (const Id id : texts) {
        put(at, id);
        at += sizeof id;
    }
}

void putValue(char *at, const ZELKPackedProperties::Value &value)
{
    if (value.type == Type::Real)
        put(at, value.real);
    else if (value.type == Type::Texts)
        putTexts(at, value.texts);
    else
        ZELKPackedProperties::putNumber(at, value.type, value.number);
}

} // namespace

ZELKPackedProperties::ZELKPackedProperties(ZELKStringPool &texts)
    : m_texts(texts)
{
    const std::array<QLatin1String, keyCount> names{ZELKPropertyName,
                                                    ZELKPropertyIsPresent,
                                                    ZELKPropertyIsCharging,
                                                    ZELKPropertyCurrentCapacity,
                                                    ZELKPropertyMaxCapacity,
                                                    ZELKPropertyTimeToEmpty,
                                                    ZELKPropertyTimeToFullCharge,
                                                    ZELKPropertyPowerSourceID,
                                                    ZELKPropertyTransportType,
                                                    ZELKPropertyLowWarnLevel,
                                                    ZELKPropertyShutdownLevel,
                                                    ZELKPropertyPowerSourceState,
                                                    ZELKPropertyIdleSeconds,
                                                    ZELKPropertyProcesses};
    for (std::size_t key = 0; key < names.size(); ++key)
        m_keys[key] = m_texts.intern(std::string_view(names[key].data(), std::size_t(names[key].size())));
    m_shapes.emplace_back();
}

Type ZELKPackedProperties::narrowest(std::int64_t number)
{
    if (number == std::int16_t(number))
        return Type::Int16;
    return number == std::int32_t(number) ? Type::Int32 : Type::Int64;
}

Type ZELKPackedProperties::narrowestText(Id id)
{
    return id <= 0xFFFF ? Type::Text16 : Type::Text32;
}

void ZELKPackedProperties::putNumber(char *at, Type type, std::int64_t number)
{
    switch (widthOf(type)) {
    case 1:
        return put(at, std::uint8_t(number));
    case 2:
        return put(at, std::uint16_t(number));
    case 4:
        return put(at, std::uint32_t(number));
    default:
        return put(at, number);
    }
}

// MARK: packing

std::optional<ZELKPackedProperties::NamedValue> ZELKPackedProperties::named(const QString &key,
                                                                            const QVariant &value)
{
    NamedValue result;
    const auto pooled = [this](const QString &text) { return m_texts.intern(text); };
    const auto fits = [](const QString &text) {
        // A byte order mark in front would not come back from the pool.
        return text.size() <= longestPooledText && !text.contains(QChar::Null) && text.isValidUtf16() &&
               !text.startsWith(QChar::ByteOrderMark);
    };
    if (!fits(key))
        return std::nullopt;
    result.key = pooled(key);
    Value &packed = result.value;
    switch (value.typeId()) {
    case QMetaType::Bool:
        packed.number = value.toBool() ? 1 : 0;
        return result;
    case QMetaType::LongLong:
        packed.number = value.toLongLong();
        packed.type = narrowest(packed.number);
        return result;
    case QMetaType::Double:
        packed.type = Type::Real;
        packed.real = value.toDouble();
        return result;
    case QMetaType::QString:
        if (value.toString().isEmpty() || !fits(value.toString()))
            return std::nullopt;
        packed.number = pooled(value.toString());
        packed.type = narrowestText(Id(packed.number));
        return result;
    case QMetaType::QVariantList:
        packed.type = Type::Texts;
        for (const QVariant &item : value.toList()) {
            if (item.typeId() != QMetaType::QString || item.toString().isEmpty() || !fits(item.toString()))
                return std::nullopt;
            packed.texts.push_back(pooled(item.toString()));
        }
        return result;
    default:
        return std::nullopt;
    }
}

ZELKPackedProperties::Ref ZELKPackedProperties::pack(const ZELKDictionary &dictionary)
{
    if (dictionary.isEmpty())
        return empty;
    std::vector<NamedValue> values;
    for (const auto &[key, value] : dictionary) {
        const std::optional<NamedValue> item = named(key, value);
        const bool textsNotLast = !values.empty() && values.back().value.type == Type::Texts;
        if (!item || textsNotLast)
            return keepLoose(dictionary);
        values.push_back(*item);
    }
    const Ref ref = pack(values);
    return ref == empty ? keepLoose(dictionary) : ref;
}

ZELKPackedProperties::Ref ZELKPackedProperties::pack(const std::vector<NamedValue> &values)
{
    const std::optional<ShapeId> shape = shapeFor(values);
    if (!shape)
        return empty;
    std::size_t size = m_shapes[*shape].size;
    if (const Value &last = values.back().value; last.type == Type::Texts)
        size += last.texts.size() * sizeof(Id);
    if (size > longestRecord)
        return empty;
    char *record = room();
    for (std::size_t i = 0; i < values.size(); ++i)
        putValue(record + m_shapes[*shape].fields[i].offset, values[i].value);
    return keep(*shape, size);
}

std::optional<ZELKPackedProperties::ShapeId>
ZELKPackedProperties::shapeFor(const std::vector<NamedValue> &values)
{
    std::string signature;
    for (const NamedValue &item : values) {
        signature.append(reinterpret_cast<const char *>(&item.key), sizeof item.key);
        signature += char(item.value.type);
    }
    if (const auto found = m_shapeIds.find(signature); found != m_shapeIds.end())
        return found->second;
    if (m_shapes.size() >= mostShapes || values.size() > mostFields)
        return std::nullopt;
    m_shapes.push_back(makeShape(values));
    const auto number = ShapeId(m_shapes.size() - 1);
    m_shapeIds.emplace(std::move(signature), number);
    return number;
}

ZELKPackedProperties::Shape ZELKPackedProperties::makeShape(const std::vector<NamedValue> &values) const
{
    Shape shape;
    shape.known.fill(-1);
    shape.size = sizeof(ShapeId);
    for (const NamedValue &item : values) {
        for (std::size_t key = 0; key < keyCount; ++key)
            if (m_keys[key] == item.key)
                shape.known[key] = std::int8_t(shape.fields.size());
        shape.fields.push_back({item.key, item.value.type, shape.size});
        shape.size = std::uint16_t(shape.size + widthOf(item.value.type));
    }
    return shape;
}

char *ZELKPackedProperties::room()
{
    if (m_blocks.empty() || m_used + longestRecord > unitsInBlock * unitBytes) {
        m_blocks.push_back(std::make_unique_for_overwrite<char[]>(unitsInBlock * unitBytes));
        m_used = m_blocks.size() == 1 ? unitBytes : 0; // number 0 is taken by `empty`
    }
    return m_blocks.back().get() + m_used;
}

ZELKPackedProperties::Ref ZELKPackedProperties::keep(ShapeId shape, std::size_t size)
{
    put(room(), shape);
    const auto ref = Ref((m_blocks.size() - 1) * unitsInBlock + m_used / unitBytes);
    m_used += (size + unitBytes - 1) / unitBytes * unitBytes;
    return ref;
}

ZELKPackedProperties::Ref ZELKPackedProperties::keepLoose(const ZELKDictionary &dictionary)
{
    m_loose.push_back(dictionary);
    put(room() + unitBytes, std::uint32_t(m_loose.size() - 1));
    return keep(ShapeId(0), 2 * unitBytes);
}
