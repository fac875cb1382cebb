#pragma once

#include <QTest>

#include <tuple>
#include <type_traits>
#include <utility>

/// The rows of a data-driven test with columns of these types: an object adds rows, from the data function,
/// and fetch() gives the test the row of its turn. Literals may stand for texts; what is left out at the end
/// of a row has its type's initial value.
template <typename... Columns>
class Rows
{
public:
    using Row = std::tuple<Columns...>;

    Rows() { QTest::addColumn<Row>("row"); }

    template <typename... Values>
    void operator()(const char *name, Values &&...values) const
    {
        add(name, std::index_sequence_for<Values...>(), std::forward<Values>(values)...);
    }

    static Row fetch()
    {
        QFETCH(Row, row);
        return row;
    }

private:
    template <typename Column, typename Value>
    static Column cell(Value &&value)
    {
        using Kind = std::decay_t<Value>;
        constexpr bool isText = std::is_same_v<Column, QString> || std::is_same_v<Column, QVariant>;
        if constexpr (isText && std::is_same_v<Kind, const char *>)
            return QString::fromUtf8(value);
        else if constexpr (std::is_same_v<Column, QString> && std::is_same_v<Kind, QByteArray>)
            return QString::fromUtf8(value);
        else
            return Column(std::forward<Value>(value));
    }
    template <std::size_t... Index, typename... Values>
    void add(const char *name, std::index_sequence<Index...>, Values &&...values) const
    {
        Row row;
        ((std::get<Index>(row) = cell<std::tuple_element_t<Index, Row>>(std::forward<Values>(values))), ...);
        QTest::newRow(name) << row;
    }
};
