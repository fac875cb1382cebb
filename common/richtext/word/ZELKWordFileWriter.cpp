#include "ZELKWordFileWriter.h"

#include "ZELKWordDocument.h"

#include <QIODevice>

ZELKWordFileWriter::ZELKWordFileWriter(QIODevice &device)
    : ZELKWordFileWriter(device, Properties())
{
}

ZELKWordFileWriter::ZELKWordFileWriter(QIODevice &device, const Properties &properties)
    : ZELKTextFileWriter(device)
    , m_properties(properties)
{
}

ZELKWordFileWriter::~ZELKWordFileWriter() = default;

void ZELKWordFileWriter::begin()
{
    if (device().isSequential()) {
        fail(Failure::NotSeekable);
        return;
    }
    m_document = std::make_unique<ZELKWordDocument>(device());
    require(m_document->begin());
}

void ZELKWordFileWriter::write(const ZELKAttributedString &piece)
{
    if (m_document->size() + 2 * piece.length() > m_properties.mostBytes) {
        fail(Failure::TooLarge);
        return;
    }
    require(m_document->append(piece));
}

void ZELKWordFileWriter::end()
{
    if (m_document->size() > m_properties.mostBytes)
        fail(Failure::TooLarge);
    else
        require(m_document->finish(m_properties.title, m_properties.application));
}

void ZELKWordFileWriter::require(bool isTaken)
{
    if (!isTaken)
        fail(Failure::Device);
}
