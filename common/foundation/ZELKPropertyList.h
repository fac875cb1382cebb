#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <cstddef>
#include <optional>
#include <string_view>

/// Property lists, XML and binary, to and from the values that ZELKDictionary names.
/// Safe on any bytes: nesting deeper than 128 levels and lists that would unfold to more than 1,000,000
/// values are refused as errors.
namespace ZELKPropertyList {

struct Result
{
    /// Invalid when nothing could be read.
    QVariant value;
    /// Empty when there was no error.
    QString error;
};

/// Either form, told by its first bytes. Dictionaries keep the order of the file. Empty input is an error.
Result read(std::string_view bytes);

/// An error text and no bytes when the value holds something that is not a property-list value.
struct Written
{
    QByteArray bytes;
    QString error;
};
Written writeBinary(const QVariant &value);
/// Dates lose their fraction of a second and are drawn in to the distant bounds, as XML has no more for them.
Written writeXml(const QVariant &value);

} // namespace ZELKPropertyList
