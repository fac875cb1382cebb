#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class ZELKExportSource;
class ZELKLWCLog;

/// The formats that can be exported. Their tags are kept in settings and interface files; 4 is none.
struct ZELKExportFormat
{
    enum Tag : int { RichText = 0, TabText = 1, PropertyList = 2, WordDocument = 3, Tiff = 5, Png = 6 };

    int tag;
    const char *suffix; ///< of files, without the point
    const char *dataType;

    bool isPicture() const { return tag == Tiff || tag == Png; }
    /// The log, or of a picture what `image` makes, to be written. Null where memory does not suffice for a
    /// picture. The log must outlive the source.
    std::unique_ptr<ZELKExportSource> source(const ZELKLWCLog &log,
                                             const std::function<QImage()> &image) const;

    static std::optional<ZELKExportFormat> withTag(int tag);
    /// In capitals too.
    static std::optional<ZELKExportFormat> withSuffix(const QString &suffix);
};
