#pragma once

#include <QByteArray>
#include <QImage>

/// Pictures of the graph as files. Opaque; what transparency an image has is lost. Empty where an image is
/// null, or memory does not suffice.
namespace ZELKGraphImage {

/// What callers who take a size from outside allow for each side, in points.
constexpr int smallestSide = 150;
constexpr int largestSide = 15000;

QByteArray PNGRepresentation(const QImage &image);
/// Compressed with LZW; with 72 pixels an inch for each that a point has.
QByteArray TIFFRepresentation(const QImage &image);

} // namespace ZELKGraphImage
