#include "ZELKExportFormat.h"

#include "ZELKBytesSource.h"
#include "ZELKGraphImage.h"
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

std::unique_ptr<ZELKExportSource> ZELKExportFormat::source(const ZELKLWCLog &log,
                                                           const std::function<QImage()> &image) const
{
    if (!isPicture())
        return ZELKLogRepresentation::sourceOfType(log, QString::fromLatin1(dataType));
    const QByteArray picture =
        tag == Png ? ZELKGraphImage::PNGRepresentation(image()) : ZELKGraphImage::TIFFRepresentation(image());
    return picture.isEmpty() ? nullptr : std::make_unique<ZELKBytesSource>(picture);
}

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
