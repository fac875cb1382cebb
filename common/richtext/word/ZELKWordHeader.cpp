#include "ZELKWordHeader.h"

#include "ZELKWordBytes.h"

using namespace ZELKWordBytes;

QByteArray ZELKWordHeader::bytes(const ZELKWordTables::Places &tables) const
{
    constexpr int english = 0x0409;
    constexpr qsizetype shortCount = 14;
    constexpr qsizetype longCount = 22;
    QByteArray out;
    append16(out, 0xA5EC); // what all documents of the kind begin with
    append16(out, 0x00C1); // the version of 1997
    append16(out, 0);
    append16(out, english); // of the program that wrote it
    append16(out, 0);
    append16(out, 0x1200); // characters beyond the code page; tables in the stream "1Table"
    append16(out, 0x00BF); // the oldest version that can read it
    out.append(10, '\0');
    append32(out, room);
    append32(out, textEnd);
    append16(out, shortCount);
    out.append(2 * (shortCount - 1), '\0');
    append16(out, english);
    append16(out, longCount);
    const qsizetype numbers = out.size();
    out.append(4 * longCount, '\0');
    set(out, numbers, streamSize);
    set(out, numbers + 12, unitCount);
    append16(out, ZELKWordTables::count);
    for (const ZELKWordTables::Place &table : tables) {
        append32(out, table.start);
        append32(out, table.length);
    }
    append16(out, 0); // nothing of later versions
    return out;
}
