#pragma once

#include "Files.h"
#include "ZELKDictionary.h"
#include "ZELKPropertyList.h"

inline void writeList(const QString &path, const ZELKDictionary &list)
{
    writeFile(path, ZELKPropertyList::writeXml(QVariant::fromValue(list)).bytes);
}

/// Empty for bytes that are no dictionary.
inline ZELKDictionary listIn(const QByteArray &bytes)
{
    return ZELKPropertyList::read(bytes.toStdString()).value.value<ZELKDictionary>();
}
