#include "ZELKRtfReader.h"
#include "ZELKRtfWriter.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// A paragraph has one style in a file; the reader leaves the last of a text as it stands there.
ZELKAttributedString withUniformParagraphs(const ZELKAttributedString &text)
{
    ZELKAttributedString result;
    for (qsizetype start = 0; start < text.length();) {
        const qsizetype lineEnd = text.string().indexOf(QLatin1Char('\n'), start);
        const qsizetype end = lineEnd < 0 ? text.length() : lineEnd + 1;
        ZELKAttributedString paragraph = text.substring(start, end - start);
        const ZELKParagraphStyle style = paragraph.attributesAt(0).paragraph;
        paragraph.changeAttributes([&style](ZELKTextAttributes &one) { one.paragraph = style; });
        result.append(paragraph);
        start = end;
    }
    return result;
}

} // namespace

/// Any bytes are read, in part or whole, or refused with a reason; the runs of a text add up to it; and what
/// was read is read again, and equal, from what is written of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto first = ZELKRtfReader::read({reinterpret_cast<const char *>(data), qsizetype(size)});
    require(first.text || first.error);
    if (!first.text)
        return 0;
    qsizetype length = 0;
    for (const ZELKAttributedString::Run &run : first.text->runs()) {
        require(run.length > 0);
        length += run.length;
    }
    require(length == first.text->length());

    const ZELKAttributedString written = withUniformParagraphs(*first.text);
    const auto second = ZELKRtfReader::read(ZELKRtfWriter::write(written));
    require(second.text && !second.error);
    require(*second.text == written);
    return 0;
}
