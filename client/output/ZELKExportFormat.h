#pragma once

#include <QString>

#include <optional>

/// The formats that can be exported. Their tags are kept in settings and interface files; 4 is none.
struct ZELKExportFormat
{
    enum Tag : int { RichText = 0, TabText = 1, PropertyList = 2, WordDocument = 3, Tiff = 5, Png = 6 };

    int tag;
    const char *suffix; ///< of files, without the point
    const char *dataType;

    bool isPicture() const { return tag == Tiff || tag == Png; }

    static std::optional<ZELKExportFormat> withTag(int tag);
    /// In capitals too.
    static std::optional<ZELKExportFormat> withSuffix(const QString &suffix);
};
