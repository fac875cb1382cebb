#pragma once

#include "ZELKWordTables.h"

/// The beginning of a Word document's first stream.
struct ZELKWordHeader
{
    /// Behind it the text begins.
    static constexpr quint32 room = 0x600;

    quint32 textEnd = room;
    quint32 unitCount = 0;
    quint32 streamSize = 0;

    QByteArray bytes(const ZELKWordTables::Places &tables) const;
};
