#include "ZELKLogRepresentation.h"

#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKListSource.h"
#include "ZELKRtfFileWriter.h"
#include "ZELKTabTextSource.h"
#include "ZELKTextDocumentSource.h"
#include "ZELKWordFileWriter.h"

#include <QBuffer>

namespace {

template <typename Writer>
std::unique_ptr<ZELKTextFileWriter> makeWriter(QIODevice &device)
{
    return std::make_unique<Writer>(device);
}

} // namespace

std::unique_ptr<ZELKExportSource> ZELKLogRepresentation::sourceOfType(const ZELKLWCLog &log,
                                                                      const QString &type)
{
    if (type == QLatin1String(tabularText))
        return std::make_unique<ZELKTabTextSource>(log);
    if (type == QLatin1String(richText))
        return std::make_unique<ZELKTextDocumentSource>(log, makeWriter<ZELKRtfFileWriter>);
    if (type == QLatin1String(wordDocument))
        return std::make_unique<ZELKTextDocumentSource>(log, makeWriter<ZELKWordFileWriter>);
    if (type == QLatin1String(propertyList))
        return std::make_unique<ZELKListSource>(log);
    ZELKConsole::log(ZELKFormat("Unsupported ZELKLog::dataRepresentationOfType:%@",
                                {type.isNull() ? QVariant() : QVariant(type)}));
    return nullptr;
}

QByteArray ZELKLogRepresentation::dataRepresentationOfType(const ZELKLWCLog &log, const QString &type)
{
    const std::unique_ptr<ZELKExportSource> source = sourceOfType(log, type);
    if (!source)
        return {};
    QByteArray bytes("", 0); // an empty log has data too
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    auto outcome = ZELKExportSource::Outcome::More;
    while (outcome == ZELKExportSource::Outcome::More)
        outcome = source->writeSome(buffer);
    return outcome == ZELKExportSource::Outcome::Whole ? bytes : QByteArray();
}
