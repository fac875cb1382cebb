#include "ZELKLWCInspectorDictionarySubViewController.h"

ZELKLWCInspectorDictionarySubViewController::ZELKLWCInspectorDictionarySubViewController(
    const QVariant &value, const QString &key)
    : ZELKLWCInspectorSubViewController(value, key,
                                        QStringLiteral("ZELKLWCInspectorDictionarySubViewController"))
    , m_keyArray(value.value<ZELKDictionary>().keys())
{
}

int ZELKLWCInspectorDictionarySubViewController::numberOfRowsInTableView() const
{
    return m_keyArray.isEmpty() ? ZELKLWCInspectorSubViewController::numberOfRowsInTableView()
                                : int(m_keyArray.size());
}

QVariant
ZELKLWCInspectorDictionarySubViewController::tableViewObjectValueForTableColumn(const QString &column,
                                                                                int row) const
{
    if (m_keyArray.isEmpty())
        return ZELKLWCInspectorSubViewController::tableViewObjectValueForTableColumn(column, row);
    const QString key = m_keyArray.value(row);
    return column == QLatin1String("key") ? QVariant(key)
                                          : attributeValue().value<ZELKDictionary>().value(key);
}
