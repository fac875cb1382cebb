#include "ZELKLWCInspectorEntrySubViewController.h"

#include "ZELKInspectorFacts.h"
#include "ZELKLWCLogEntry.h"

ZELKLWCInspectorEntrySubViewController::ZELKLWCInspectorEntrySubViewController(ZELKLWCLogEntry &entry)
    : ZELKLWCInspectorSubViewController(QVariant::fromValue(&entry), QStringLiteral("Event"),
                                        QStringLiteral("ZELKLWCInspectorEntrySubViewController"))
    , m_entry(entry)
    , m_facts(ZELKInspectorFacts::ofEntry(entry))
{
}

ZELKAttributedString ZELKLWCInspectorEntrySubViewController::title() const
{
    return ZELKInspectorFacts::titleOf(m_entry);
}

QVariant ZELKLWCInspectorEntrySubViewController::tableViewObjectValueForTableColumn(const QString &column,
                                                                                    int row) const
{
    const QString key = m_facts.keys().value(row);
    return column == QLatin1String("key") ? QVariant(key) : m_facts.value(key);
}
