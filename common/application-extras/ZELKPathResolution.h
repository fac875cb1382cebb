#pragma once

#include <QString>

/// Finds out where a path leads, component by component. Followed are symbolic links, and files of desktop
/// entries of type Link, as people make them on their desktops, that lead to something local.
namespace ZELKPathResolution {

enum class Outcome {
    Resolved,
    Missing, ///< a component is not there, or what should be a folder is none
    Loop     ///< links lead to each other, or so many follow each other that the system would give up
};

struct Result
{
    Outcome outcome;
    /// Where it leads, without links, "." and ".."; else the component that is missing, or the link at which
    /// it was given up.
    QString path;

    bool operator==(const Result &) const = default;
};

/// A relative path begins in `folder`, an absolute path without links in it.
Result resolve(const QString &path, const QString &folder = {});

} // namespace ZELKPathResolution
