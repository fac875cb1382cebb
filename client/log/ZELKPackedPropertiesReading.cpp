// Packed records, read and compared.
#include "ZELKPackedProperties.h"

#include "ZELKPackedValue.h"
#include "ZELKValue.h"

using namespace ZELKPackedValue;

const char *ZELKPackedProperties::bytesOf(Ref ref) const
{
    return m_blocks[ref / unitsInBlock].get() + ref % unitsInBlock * unitBytes;
}

ZELKPackedProperties::ShapeId ZELKPackedProperties::shapeNumber(const char *record)
{
    return load<ShapeId>(record);
}

const ZELKDictionary &ZELKPackedProperties::loose(const char *record) const
{
    return m_loose[load<std::uint32_t>(record + unitBytes)];
}

std::optional<ZELKPackedProperties::ShapeId> ZELKPackedProperties::shapeOf(Ref ref) const
{
    const ShapeId shape = ref == empty ? ShapeId(0) : shapeNumber(bytesOf(ref));
    return shape ? std::optional(shape) : std::nullopt;
}

const ZELKPackedProperties::Field *ZELKPackedProperties::fieldFor(const char *record, Key key) const
{
    const Shape &shape = m_shapes[shapeNumber(record)];
    return shape.known[key] < 0 ? nullptr : &shape.fields[std::size_t(shape.known[key])];
}

QVariant ZELKPackedProperties::valueAt(const char *record, const Field &field) const
{
    const char *at = record + field.offset;
    switch (field.type) {
    case Type::Bool:
        return integerAt(at, field.type) != 0;
    case Type::Real:
        return load<double>(at);
    case Type::Text16:
    case Type::Text32:
        return m_texts.string(textAt(at, field.type));
    case Type::Texts: {
        QVariantList list;
        const auto count = load<std::uint16_t>(at);
        for (std::size_t i = 0; i < count; ++i)
            list.append(m_texts.string(load<Id>(at + widthOf(Type::Texts) + i * sizeof(Id))));
        return list;
    }
    default:
        return qlonglong(integerAt(at, field.type));
    }
}

ZELKDictionary ZELKPackedProperties::unpack(Ref ref) const
{
    ZELKDictionary dictionary;
    if (ref == empty)
        return dictionary;
    const char *record = bytesOf(ref);
    if (shapeNumber(record) == 0)
        return loose(record);
    for (const Field &field : m_shapes[shapeNumber(record)].fields)
        dictionary.insert(m_texts.string(field.key), valueAt(record, field));
    return dictionary;
}

bool ZELKPackedProperties::contains(Ref ref, Key key) const
{
    if (ref == empty)
        return false;
    const char *record = bytesOf(ref);
    return shapeNumber(record) ? fieldFor(record, key) != nullptr
                               : loose(record).contains(m_texts.string(m_keys[key]));
}

QVariant ZELKPackedProperties::value(Ref ref, Key key) const
{
    if (ref == empty)
        return {};
    const char *record = bytesOf(ref);
    if (shapeNumber(record) == 0)
        return loose(record).value(m_texts.string(m_keys[key]));
    const Field *field = fieldFor(record, key);
    return field ? valueAt(record, *field) : QVariant();
}

QVariant ZELKPackedProperties::value(Ref ref, const QString &key) const
{
    if (ref == empty)
        return {};
    const char *record = bytesOf(ref);
    if (shapeNumber(record) == 0)
        return loose(record).value(key);
    const Id id = m_texts.find(std::string_view(key.toUtf8()));
    for (const Field &field : m_shapes[shapeNumber(record)].fields)
        if (field.key == id)
            return valueAt(record, field);
    return {};
}

int ZELKPackedProperties::intValue(Ref ref, Key key) const
{
    if (ref == empty)
        return 0;
    const char *record = bytesOf(ref);
    if (shapeNumber(record))
        if (const Field *field = fieldFor(record, key); field && field->type <= Type::Int32)
            return int(integerAt(record + field->offset, field->type));
    return ZELKValue::intValue(value(ref, key));
}

float ZELKPackedProperties::floatValue(Ref ref, Key key) const
{
    if (ref == empty)
        return 0.0F;
    const char *record = bytesOf(ref);
    if (shapeNumber(record))
        if (const Field *field = fieldFor(record, key); field && field->type <= Type::Int32)
            return float(integerAt(record + field->offset, field->type));
    return ZELKValue::floatValue(value(ref, key));
}

Id ZELKPackedProperties::textId(Ref ref, Key key) const
{
    if (ref == empty)
        return ZELKStringPool::nil;
    const char *record = bytesOf(ref);
    if (shapeNumber(record))
        if (const Field *field = fieldFor(record, key); field && isText(field->type))
            return textAt(record + field->offset, field->type);
    const QVariant found = value(ref, key);
    return found.isValid() ? m_texts.intern(ZELKValue::description(found)) : ZELKStringPool::nil;
}

// MARK: comparing

bool ZELKPackedProperties::equalFields(const char *a, const Field &fieldA, const char *b,
                                       const Field &fieldB) const
{
    if (isText(fieldA.type) && isText(fieldB.type))
        return textAt(a + fieldA.offset, fieldA.type) == textAt(b + fieldB.offset, fieldB.type);
    if (fieldA.type <= Type::Int64 && fieldB.type <= Type::Int64)
        return integerAt(a + fieldA.offset, fieldA.type) == integerAt(b + fieldB.offset, fieldB.type);
    return ZELKValue::isEqual(valueAt(a, fieldA), valueAt(b, fieldB));
}

bool ZELKPackedProperties::equalValue(const char *a, const char *b, Key key) const
{
    const Field *fieldA = fieldFor(a, key);
    const Field *fieldB = fieldFor(b, key);
    if (!fieldA || !fieldB)
        return false;
    if (fieldA == fieldB && fieldA->type < Type::Real)
        return std::memcmp(a + fieldA->offset, b + fieldA->offset, widthOf(fieldA->type)) == 0;
    return equalFields(a, *fieldA, b, *fieldB);
}

bool ZELKPackedProperties::equalValues(Ref a, Ref b, std::initializer_list<Key> keys) const
{
    if (a == empty || b == empty)
        return false;
    const char *recordA = bytesOf(a);
    const char *recordB = bytesOf(b);
    const bool shaped = shapeNumber(recordA) && shapeNumber(recordB);
    for (const Key key : keys)
        if (shaped ? !equalValue(recordA, recordB, key) : !ZELKValue::isEqual(value(a, key), value(b, key)))
            return false;
    return true;
}

std::size_t ZELKPackedProperties::recordSize(const char *record) const
{
    const Shape &shape = m_shapes[shapeNumber(record)];
    const Field &last = shape.fields.back();
    const std::size_t texts = last.type == Type::Texts ? load<std::uint16_t>(record + last.offset) : 0;
    return shape.size + texts * sizeof(Id);
}

bool ZELKPackedProperties::equalShaped(const char *a, const char *b) const
{
    const Shape &shapeA = m_shapes[shapeNumber(a)];
    const Shape &shapeB = m_shapes[shapeNumber(b)];
    if (&shapeA == &shapeB && recordSize(a) == recordSize(b) && !std::memcmp(a, b, recordSize(a)))
        return true;
    if (shapeA.fields.size() != shapeB.fields.size())
        return false;
    for (const Field &fieldA : shapeA.fields) {
        const Field *match = nullptr;
        for (const Field &fieldB : shapeB.fields)
            if (fieldB.key == fieldA.key)
                match = &fieldB;
        if (!match || !equalFields(a, fieldA, b, *match))
            return false;
    }
    return true;
}

bool ZELKPackedProperties::equal(Ref a, Ref b) const
{
    if (a == b)
        return true;
    if (a == empty || b == empty)
        return false;
    const char *recordA = bytesOf(a);
    const char *recordB = bytesOf(b);
    if (shapeNumber(recordA) && shapeNumber(recordB))
        return equalShaped(recordA, recordB);
    return unpack(a) == unpack(b);
}
