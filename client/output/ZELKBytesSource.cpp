#include "ZELKBytesSource.h"

#include <QIODevice>

#include <algorithm>

namespace {

constexpr qsizetype pieceSize = qsizetype(4) << 20;

} // namespace

ZELKExportSource::Outcome ZELKBytesSource::writeSome(QIODevice &device)
{
    const qsizetype size = std::min(pieceSize, m_bytes.size() - m_written);
    if (device.write(m_bytes.constData() + m_written, size) != size)
        return Outcome::Failed;
    m_written += size;
    return m_written < m_bytes.size() ? Outcome::More : Outcome::Whole;
}

double ZELKBytesSource::fraction() const
{
    return m_bytes.isEmpty() ? 1.0 : double(m_written) / double(m_bytes.size());
}
