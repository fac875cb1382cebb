#include "ZELKTextDocumentSource.h"

#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKRtfReader.h"

#include <QFile>

#include <cerrno>

namespace {

/// Empty when there is none. One that is damaged is no reason to keep the history to oneself.
ZELKAttributedString resource(const QString &name)
{
    QFile file(ZELKEnvironment::current().mainBundle->pathForResource(name, QStringLiteral("rtf")));
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    const ZELKRtfReader::Result result = ZELKRtfReader::read(file.read(ZELKRtfReader::mostBytes + 1));
    if (result.error)
        ZELKConsole::log(ZELKFormat("%@: %@", {file.fileName(), result.error->localizedDescription()}));
    return result.text.value_or(ZELKAttributedString());
}

/// The dates are equally long; a summary that needs more than a line goes on where it began.
ZELKTextAttributes lookOfLines()
{
    constexpr double summaryStart = 170.0;
    ZELKTextAttributes look;
    look.paragraph.leftIndent = summaryStart;
    look.paragraph.firstLineIndent = -summaryStart;
    look.paragraph.tabStops = {{summaryStart, ZELKTabStop::Kind::Left}};
    return look;
}

} // namespace

ZELKTextDocumentSource::ZELKTextDocumentSource(const ZELKLWCLog &log, const MakeWriter &makeWriter)
    : ZELKLogSource(log)
    , m_makeWriter(makeWriter)
{
}

bool ZELKTextDocumentSource::begin(QIODevice &device)
{
    m_writer = m_makeWriter(device);
    const ZELKAttributedString prefix = resource(QStringLiteral("ExportPrefix"));
    m_suffix = resource(QStringLiteral("ExportSuffix"));
    m_writer->announce(prefix);
    m_writer->announce(lookOfLines());
    m_writer->announce(m_suffix);
    return m_writer->append(prefix);
}

bool ZELKTextDocumentSource::writeEntries(QIODevice &, int first, int end)
{
    QString lines;
    for (int i = first; i < end; ++i)
        lines += entry(i).date().description() + QLatin1Char('\t') +
                 ZELKTextFileWriter::withinParagraph(entry(i).summary()) + QLatin1Char('\n');
    return m_writer->append(lines, lookOfLines());
}

bool ZELKTextDocumentSource::end(QIODevice &)
{
    return m_writer->append(m_suffix) && m_writer->finish();
}

int ZELKTextDocumentSource::systemError() const
{
    switch (m_writer ? m_writer->failure() : ZELKTextFileWriter::Failure::None) {
    case ZELKTextFileWriter::Failure::TooLarge:
        return EFBIG;
    case ZELKTextFileWriter::Failure::NotSeekable:
        return ESPIPE;
    case ZELKTextFileWriter::Failure::Device:
    case ZELKTextFileWriter::Failure::None:
        break;
    }
    return 0;
}
