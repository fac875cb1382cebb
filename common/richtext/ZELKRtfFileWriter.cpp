#include "ZELKRtfFileWriter.h"

#include <QIODevice>

void ZELKRtfFileWriter::begin()
{
    for (const ZELKTextAttributes &look : looks())
        m_looks.add(look);
    m_waiting = m_looks.head();
}

void ZELKRtfFileWriter::write(const ZELKAttributedString &piece)
{
    constexpr qsizetype enough = 65536;
    m_body.append(m_waiting, piece);
    if (m_waiting.size() >= enough)
        flush();
}

void ZELKRtfFileWriter::end()
{
    m_waiting += ZELKRtfBody::tail;
    flush();
}

void ZELKRtfFileWriter::flush()
{
    if (device().write(m_waiting) != m_waiting.size())
        fail(Failure::Device);
    m_waiting.resize(0); // keeps its room
}
