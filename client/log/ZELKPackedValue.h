#pragma once

#include "ZELKPackedProperties.h"

#include <cstdint>
#include <cstring>

/// How the values of packed records stand in memory: unaligned, in the machine's byte order.
namespace ZELKPackedValue {

using Id = ZELKStringPool::Id;
using Type = ZELKPackedProperties::Type;

template <typename T>
T load(const char *at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <typename T>
void put(char *at, T value)
{
    std::memcpy(at, &value, sizeof value);
}

inline std::uint16_t widthOf(Type type)
{
    switch (type) {
    case Type::Bool:
        return 1;
    case Type::Int16:
    case Type::Text16:
    case Type::Texts:
        return 2;
    case Type::Int32:
    case Type::Text32:
        return 4;
    case Type::Int64:
    case Type::Real:
        return 8;
    }
    return 0;
}

inline bool isText(Type type)
{
    return type == Type::Text16 || type == Type::Text32;
}

inline Id textAt(const char *at, Type type)
{
    return type == Type::Text16 ? load<std::uint16_t>(at) : load<Id>(at);
}

inline std::int64_t integerAt(const char *at, Type type)
{
    switch (type) {
    case Type::Bool:
        return load<std::uint8_t>(at);
    case Type::Int16:
        return load<std::int16_t>(at);
    case Type::Int32:
        return load<std::int32_t>(at);
    default:
        return load<std::int64_t>(at);
    }
}

} // namespace ZELKPackedValue
