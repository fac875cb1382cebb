#pragma once

#include "ZELKLogSource.h"

#include <QByteArray>
#include <QVariant>

/// An XML property list: an array with a dictionary for each entry. Byte by byte what the property list of
/// the whole log is, but only some entries of it are in memory at a time.
///
/// Characters that XML has no place for become U+FFFD, since a list with them in it could not be read. An
/// entry that cannot be written is told of on the console ("Error: %@") and left out.
class ZELKListSource : public ZELKLogSource
{
public:
    using ZELKLogSource::ZELKLogSource;

    /// The value with such characters replaced in its texts and keys, however deep they stand.
    static QVariant carriedByXml(const QVariant &value);

protected:
    bool writeEntries(QIODevice &device, int first, int end) override;
    bool end(QIODevice &device) override;

private:
    QByteArray itemsOf(const QVariantList &entries);
    bool writeOpening(QIODevice &device);

    bool m_isOpen = false;
};
