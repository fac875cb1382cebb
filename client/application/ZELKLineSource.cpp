#include "ZELKLineSource.h"

#include "ZELKSystemErrorText.h"

#include <algorithm>
#include <cerrno>

#include <unistd.h>

namespace {

constexpr std::size_t pieceSize = std::size_t(256) << 10;

} // namespace

ZELKLineSource::ZELKLineSource(int descriptor, std::size_t longestLine)
    : m_descriptor(descriptor)
    , m_longestLine(longestLine)
{
}

std::optional<ZELKLineSource::Line> ZELKLineSource::next()
{
    while (true) {
        const std::size_t end = m_buffer.find('\n', m_scanned);
        const bool isWhole = end != std::string::npos;
        const std::size_t length = (isWhole ? end : m_buffer.size()) - m_begin;
        if (isWhole || (m_ended && (length > 0 || m_skipping))) {
            const Line line{m_skipping || length > m_longestLine
                                ? std::string_view()
                                : std::string_view(m_buffer).substr(m_begin, length),
                            ++m_number, m_skipping || length > m_longestLine};
            m_begin = m_scanned = isWhole ? end + 1 : m_buffer.size();
            m_skipping = false;
            return line;
        }
        if (m_ended)
            return std::nullopt;
        m_skipping = m_skipping || length > m_longestLine;
        m_buffer.erase(0, m_skipping ? m_buffer.size() : m_begin);
        m_begin = 0;
        m_scanned = m_buffer.size();
        m_ended = !readMore();
    }
}

bool ZELKLineSource::readMore()
{
    const std::size_t before = m_buffer.size();
    m_buffer.resize(before + pieceSize);
    ssize_t count = 0;
    do {
        count = ::read(m_descriptor, m_buffer.data() + before, pieceSize);
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        m_error = ZELKSystemErrorText(errno);
    m_buffer.resize(before + std::size_t(std::max<ssize_t>(count, 0)));
    return count > 0;
}
