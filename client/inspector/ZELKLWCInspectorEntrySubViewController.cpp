#include "ZELKLWCInspectorEntrySubViewController.h"

#include "ZELKInspectorFacts.h"
#include "ZELKLWCLogEntry.h"

ZELKLWCInspectorEntrySubViewController::ZELKLWCInspectorEntrySubViewController(ZELKLWCLogEntry &entry)
    : ZELKLWCInspectorSubViewController(QVariant::fromValue(&entry), QStringLiteral("Event"),
                                        QStringLiteral("ZELKLWCInspectorEntrySubViewController"))
    , m_entry(entry)
{
}

ZELKAttributedString ZELKLWCInspectorEntrySubViewController::title() const
{
    return ZELKInspectorFacts::titleOf(m_entry);
}
