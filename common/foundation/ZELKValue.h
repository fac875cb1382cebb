#pragma once

#include <QString>
#include <QVariant>

/// The one way a value becomes text, and what its number is.
namespace ZELKValue {

/// Stable and the same in every locale: a string is itself, booleans "1" and "0", integers in decimal, a
/// double in its shortest exact form, a date as ZELKDate::description(), data as "<hex>", an array "(a, b)",
/// a dictionary
/// "{k = v; l = w}", an invalid variant "(null)". A registered type describes itself through its QString
/// converter (QMetaType::registerConverter).
QString description(const QVariant &value);

/// Leading number of a text ("12abc" is 12), truncation of a double, 1 and 0 of a boolean; 0 for everything
/// else. Out-of-range values are drawn in to the type's bounds.
int intValue(const QVariant &value);
double doubleValue(const QVariant &value);
float floatValue(const QVariant &value);

/// Equal as property-list values: numbers by value whatever their type (true equals 1), everything else by
/// type and value; an invalid variant equals nothing, not even another one.
bool isEqual(const QVariant &a, const QVariant &b);

} // namespace ZELKValue
