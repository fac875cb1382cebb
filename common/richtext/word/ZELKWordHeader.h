#pragma once

#include "ZELKWordTables.h"

/// The beginning of a Word document's first stream.
struct ZELKWordHeader
{
    /// Where text may begin.
    static constexpr quint32 room = 0x600;

    quint32 textStart = room;
    quint32 textEnd = room;
    quint32 unitCount = 0;
    quint32 streamSize = 0;

    QByteArray bytes(const ZELKWordTables::Places &tables) const;
};
