#pragma once

#include <QString>
#include <QVariant>

#include <stdexcept>

class ZELKLWCLogEntry;

/// Values of an entry by name, for templates and for the columns of a table.
namespace ZELKEntryKeyPath {

/// Thrown for a name that entries do not respond to.
class Unknown : public std::runtime_error
{
public:
    explicit Unknown(const QString &keyPath);
};

/// "date", "event", "monitor", "group", "summary", "supplimentSummary", "pairRepresents",
/// "attributesAsString", "stringValue", "description", and "events", which is the entry itself. A text that
/// is nil is an invalid variant.
QVariant value(ZELKLWCLogEntry &entry, const QString &keyPath);
/// Name of the entry's class.
QString className(const ZELKLWCLogEntry &entry);

} // namespace ZELKEntryKeyPath
