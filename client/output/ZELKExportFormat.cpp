#include "ZELKExportFormat.h"

#include "ZELKLogRepresentation.h"

#include <array>

namespace {

constexpr std::array<ZELKExportFormat, 6> formats{
    {{ZELKExportFormat::RichText, "rtf", ZELKLogRepresentation::richText},
     {ZELKExportFormat::TabText, "txt", ZELKLogRepresentation::tabularText},
     {ZELKExportFormat::PropertyList, "plist", ZELKLogRepresentation::propertyList},
     {ZELKExportFormat::WordDocument, "doc", ZELKLogRepresentation::wordDocument},
     {ZELKExportFormat::Tiff, "tiff", "image/tiff"},
     {ZELKExportFormat::Png, "png", "image/png"}}};

template <typename Matches>
std::optional<ZELKExportFormat> find(const Matches &matches)
{
    for (const ZELKExportFormat &format : formats)
        if (matches(format))
            return format;
    return std::nullopt;
}

} // namespace

std::optional<ZELKExportFormat> ZELKExportFormat::withTag(int tag)
{
    return find([tag](const ZELKExportFormat &format) { return format.tag == tag; });
}

std::optional<ZELKExportFormat> ZELKExportFormat::withSuffix(const QString &suffix)
{
    return find([&](const ZELKExportFormat &format) {
        return suffix.compare(QLatin1String(format.suffix), Qt::CaseInsensitive) == 0;
    });
}
