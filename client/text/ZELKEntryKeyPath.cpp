#include "ZELKEntryKeyPath.h"

#include "ZELKFormat.h"
#include "ZELKLWCLogEntry.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

using Entry = ZELKLWCLogEntry;
using Value = QVariant (*)(Entry &entry);

QVariant textOrNil(const QString &text)
{
    return text.isNull() ? QVariant() : QVariant(text);
}

constexpr std::pair<const char *, Value> values[] = {
    {"summary", [](Entry &entry) { return QVariant(entry.summary()); }},
    {"attributesAsString", [](Entry &entry) { return QVariant(entry.attributesAsString()); }},
    {"date", [](Entry &entry) { return QVariant::fromValue(entry.date()); }},
    {"events", [](Entry &entry) { return QVariant::fromValue(entry.events()); }},
    {"event", [](Entry &entry) { return textOrNil(entry.event()); }},
    {"monitor", [](Entry &entry) { return textOrNil(entry.monitor()); }},
    {"group", [](Entry &entry) { return textOrNil(entry.group()); }},
    {"supplimentSummary", [](Entry &entry) { return textOrNil(entry.supplimentSummary()); }},
    {"pairRepresents", [](Entry &entry) { return textOrNil(entry.pairRepresents()); }},
    {"stringValue", [](Entry &entry) { return QVariant(entry.stringValue()); }},
    {"description", [](Entry &entry) { return QVariant(entry.description()); }}};

} // namespace

ZELKEntryKeyPath::Unknown::Unknown(const QString &keyPath)
    : std::runtime_error(ZELKFormat("Entries do not respond to %@.", {keyPath}).toStdString())
{
}

QVariant ZELKEntryKeyPath::value(ZELKLWCLogEntry &entry, const QString &keyPath)
{
    const auto *found = std::find_if(std::begin(values), std::end(values), [&keyPath](const auto &row) {
        return keyPath == QLatin1String(row.first);
    });
    if (found == std::end(values))
        throw Unknown(keyPath);
    return found->second(entry);
}

QString ZELKEntryKeyPath::className(const ZELKLWCLogEntry &entry)
{
    switch (entry.kind()) {
    case ZELKEntryKind::Daemon:
        return QStringLiteral("ZELKLWCLogEntryDaemon");
    case ZELKEntryKind::IdleSleep:
        return QStringLiteral("ZELKLWCLogEntryIdleSleep");
    case ZELKEntryKind::PowerState:
        return QStringLiteral("ZELKLWCLogEntryPowerState");
    case ZELKEntryKind::PowerStatus:
        return QStringLiteral("ZELKLWCLogEntryPowerStatus");
    case ZELKEntryKind::Account:
        return QStringLiteral("ZELKLWCLogEntryAccount");
    case ZELKEntryKind::Plain:
        break;
    }
    return QStringLiteral("ZELKLWCLogEntry");
}
