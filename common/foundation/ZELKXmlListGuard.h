#pragma once

#include <QString>

#include <string_view>

/// Looks over an XML property list before the library reads it, as the library takes any nesting and passes
/// over what it cannot make sense of.
namespace ZELKXmlListGuard {

/// Why the list is refused; empty when it is sound.
QString objectionTo(std::string_view xml);

} // namespace ZELKXmlListGuard
