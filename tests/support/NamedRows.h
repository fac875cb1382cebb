#pragma once

#include <QtTest>

#include <type_traits>

/// The data of a test function: made with the names of the columns, then called for each row. A column of
/// `const char *` holds a QString, null for a row without it.
template <typename... Values>
class NamedRows
{
    template <typename>
    using Name = const char *;
    template <typename Value>
    using Held = std::conditional_t<std::is_same_v<Value, const char *>, QString, Value>;

public:
    explicit NamedRows(Name<Values>... names) { (QTest::addColumn<Held<Values>>(names), ...); }
    void operator()(const char *title, const Values &...values) const
    {
        (QTest::newRow(title) << ... << Held<Values>(held(values)));
    }

private:
    static QString held(const char *text) { return QString::fromUtf8(text); }
    template <typename Value>
    static const Value &held(const Value &value)
    {
        return value;
    }
};
