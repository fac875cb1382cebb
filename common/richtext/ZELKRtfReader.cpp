#include "ZELKRtfReader.h"

#include "ZELKRtfParser.h"

ZELKRtfReader::Result ZELKRtfReader::read(QByteArrayView bytes)
{
    if (bytes.size() > mostBytes)
        return {std::nullopt, ZELKRtfError(ZELKRtfError::Code::TooLarge, mostBytes)};
    ZELKRtfParser parser(bytes);
    return parser.parse();
}
