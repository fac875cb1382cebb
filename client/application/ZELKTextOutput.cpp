#include "ZELKTextOutput.h"

#include "ZELKCharacters.h"
#include "ZELKConsole.h"
#include "ZELKSystemErrorText.h"

#include <algorithm>
#include <cerrno>

#include <unistd.h>

namespace {

constexpr qsizetype bufferSize = qsizetype(64) << 10;

} // namespace

ZELKTextOutput::~ZELKTextOutput()
{
    flush();
}

void ZELKTextOutput::write(std::string_view utf8)
{
    if (m_state != State::Good)
        return;
    m_buffer.append(utf8.data(), qsizetype(utf8.size()));
    if (m_buffer.size() >= bufferSize)
        flush();
}

ZELKTextOutput::State ZELKTextOutput::flush()
{
    qsizetype done = 0;
    while (m_state == State::Good && done < m_buffer.size()) {
        const ssize_t count =
            ::write(m_descriptor, m_buffer.constData() + done, std::size_t(m_buffer.size() - done));
        if (count >= 0) {
            done += count;
        } else if (errno == EPIPE) {
            m_state = State::Closed;
        } else if (errno != EINTR) {
            m_state = State::Failed;
            m_error = ZELKSystemErrorText(errno);
        }
    }
    m_buffer.resize(0);
    return m_state;
}

QString ZELKTextOutput::safe(const QString &text)
{
    if (std::all_of(text.begin(), text.end(), &ZELKCharacters::isPlain))
        return text;
    QString line;
    for (const QChar character : text)
        line += ZELKCharacters::isPlain(character) ? QString(character) : ZELKConsole::escaped(character);
    return line;
}
