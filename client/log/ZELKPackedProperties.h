#pragma once

#include "ZELKDictionary.h"
#include "ZELKStringPool.h"

#include <array>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The property dictionaries of a log, a few bytes each: dictionaries with the same keys and value types
/// share a shape, and a record holds only the values, texts as numbers of the pool. A power-source reading of
/// twelve values takes 28 bytes. What fits no shape (nested dictionaries, data, very long texts) is kept as
/// it is.
///
/// A record never changes and is never freed; its number stays valid as long as this object.
class ZELKPackedProperties
{
public:
    /// Names a record; `empty` is the dictionary without keys.
    using Ref = std::uint32_t;
    static constexpr Ref empty = 0;

    /// Keys that are found without a search.
    enum Key : std::uint8_t {
        Name,
        IsPresent,
        IsCharging,
        CurrentCapacity,
        MaxCapacity,
        TimeToEmpty,
        TimeToFullCharge,
        PowerSourceID,
        TransportType,
        LowWarnLevel,
        ShutdownLevel,
        PowerSourceState,
        IdleSeconds,
        Processes,
        keyCount
    };

    enum class Type : std::uint8_t { Bool, Int16, Int32, Int64, Real, Text16, Text32, Texts };

    /// One value on its way into a record.
    struct Value
    {
        Type type = Type::Bool;
        std::int64_t number = 0; ///< of Bool and the integers; the text's number for Text16 and Text32
        double real = 0.0;
        std::vector<ZELKStringPool::Id> texts; ///< of Texts
    };
    struct NamedValue
    {
        ZELKStringPool::Id key = ZELKStringPool::nil;
        Value value;
    };

    /// `texts` outlives this object.
    explicit ZELKPackedProperties(ZELKStringPool &texts);

    Ref pack(const ZELKDictionary &dictionary);
    /// Packs values whose keys are all different; the types are those that narrowest() gives, or wider ones.
    Ref pack(const std::vector<NamedValue> &values);
    ZELKDictionary unpack(Ref ref) const;

    /// The smallest type that holds the number.
    static Type narrowest(std::int64_t number);
    /// The smallest text type that holds the number of a text.
    static Type narrowestText(ZELKStringPool::Id id);

    bool contains(Ref ref, Key key) const;
    /// An invalid variant when the record lacks the key.
    QVariant value(Ref ref, Key key) const;
    QVariant value(Ref ref, const QString &key) const;
    int intValue(Ref ref, Key key) const;
    float floatValue(Ref ref, Key key) const;
    /// Number of the value's description in the pool; nil when the record lacks the key.
    ZELKStringPool::Id textId(Ref ref, Key key) const;

    /// Both records have each of the keys, with equal values.
    bool equalValues(Ref a, Ref b, std::initializer_list<Key> keys) const;
    /// Equal dictionaries: the same keys with equal values, in whatever order.
    bool equal(Ref a, Ref b) const;

    /// Where the fields of a shape stand; what a reader that fills records in place needs.
    struct Field
    {
        ZELKStringPool::Id key;
        Type type;
        std::uint16_t
            offset; ///< from the record's first byte; a Texts field comes last and begins with its count
    };
    using ShapeId = std::uint16_t;
    static constexpr std::size_t longestRecord = 4096;
    const std::vector<Field> &fields(ShapeId shape) const { return m_shapes[shape].fields; }
    /// The shape of a record, nothing when it is kept as it is.
    std::optional<ShapeId> shapeOf(Ref ref) const;
    /// Bytes of a record of this shape, without the texts of a Texts field.
    std::size_t sizeOf(ShapeId shape) const { return m_shapes[shape].size; }
    /// Writes a Bool, an integer or a text's number where a field of that type stands.
    static void putNumber(char *at, Type type, std::int64_t number);
    /// Room for a record of up to longestRecord bytes, to be filled in place and then kept; without that, the
    /// next call gives the same room again.
    char *room();
    /// Keeps the record that room() was filled with; its first two bytes are set to the shape's number.
    Ref keep(ShapeId shape, std::size_t size);

private:
    struct Shape
    {
        std::vector<Field> fields;
        std::array<std::int8_t, keyCount> known;
        std::uint16_t size = 0;
    };
    static constexpr std::size_t unitBytes = 4;
    static constexpr std::size_t unitsInBlock = 1u << 16;

    const char *bytesOf(Ref ref) const;
    static ShapeId shapeNumber(const char *record);
    bool equalValue(const char *a, const char *b, Key key) const;
    const ZELKDictionary &loose(const char *record) const;
    Ref keepLoose(const ZELKDictionary &dictionary);
    std::optional<ShapeId> shapeFor(const std::vector<NamedValue> &values);
    Shape makeShape(const std::vector<NamedValue> &values) const;
    std::optional<NamedValue> named(const QString &key, const QVariant &value);
    QVariant valueAt(const char *record, const Field &field) const;
    const Field *fieldFor(const char *record, Key key) const;
    bool equalFields(const char *a, const Field &fieldA, const char *b, const Field &fieldB) const;
    bool equalShaped(const char *a, const char *b) const;
    std::size_t recordSize(const char *record) const;

    ZELKStringPool &m_texts;
    std::array<ZELKStringPool::Id, keyCount> m_keys;
    std::vector<Shape> m_shapes; // number 0 is that of records kept as they are
    std::unordered_map<std::string, ShapeId> m_shapeIds;
    std::vector<std::unique_ptr<char[]>> m_blocks;
    std::size_t m_used = 0; // bytes of the last block
    std::deque<ZELKDictionary> m_loose;
};
