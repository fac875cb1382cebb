#include "ZELKTabTextSource.h"

#include "ZELKLWCLogEntry.h"

#include <QIODevice>

bool ZELKTabTextSource::writeEntries(QIODevice &device, int first, int end)
{
    QString text;
    for (int i = first; i < end; ++i)
        text += entry(i).exportAsTabSeparatedString() + QLatin1Char('\n');
    const QByteArray bytes = text.toUtf8();
    return device.write(bytes) == bytes.size();
}
