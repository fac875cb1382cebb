#include "ZELKTextFileWriter.h"

#include <QFileDevice>

#include <algorithm>

ZELKTextFileWriter::ZELKTextFileWriter(QIODevice &device)
    : m_device(device)
{
}

ZELKTextFileWriter::~ZELKTextFileWriter() = default;

void ZELKTextFileWriter::announce(const ZELKTextAttributes &look)
{
    if (!m_looks.contains(look))
        m_looks.append(look);
}

void ZELKTextFileWriter::announce(const ZELKAttributedString &text)
{
    for (const ZELKAttributedString::Run &run : text.runs())
        announce(run.attributes);
}

bool ZELKTextFileWriter::append(const ZELKAttributedString &piece)
{
    if (start())
        write(piece);
    return m_failure == Failure::None;
}

bool ZELKTextFileWriter::append(const QString &text, const ZELKTextAttributes &look)
{
    return append(ZELKAttributedString(text, look));
}

bool ZELKTextFileWriter::finish()
{
    if (start()) {
        m_isFinished = true;
        end();
        // What a file's own buffer holds may find the disk full as well.
        auto *file = qobject_cast<QFileDevice *>(&m_device);
        if (file && !file->flush())
            fail(Failure::Device);
    }
    return m_failure == Failure::None;
}

/// Whether anything may be written.
bool ZELKTextFileWriter::start()
{
    if (!m_isStarted) {
        m_isStarted = true;
        begin();
    }
    return m_failure == Failure::None && !m_isFinished;
}

void ZELKTextFileWriter::fail(Failure failure)
{
    if (m_failure == Failure::None)
        m_failure = failure;
}

QString ZELKTextFileWriter::withinParagraph(const QString &value)
{
    constexpr char16_t lineBreak = 0x2028;
    const auto isEnd = [](QChar character) {
        const char16_t unit = character.unicode();
        return (unit >= u'\n' && unit <= u'\r') || unit == 0x85 || unit == 0x2029;
    };
    if (std::none_of(value.begin(), value.end(), isEnd))
        return value;
    QString result = value;
    result.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    std::replace_if(result.begin(), result.end(), isEnd, QChar(lineBreak));
    return result;
}
