#include "ZELKLWCInspectorDictionarySubViewController.h"

ZELKLWCInspectorDictionarySubViewController::ZELKLWCInspectorDictionarySubViewController(
    const QVariant &value, const QString &key)
    : ZELKLWCInspectorSubViewController(value, key,
                                        QStringLiteral("ZELKLWCInspectorDictionarySubViewController"))
{
}
