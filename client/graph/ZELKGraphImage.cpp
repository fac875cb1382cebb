#include "ZELKGraphImage.h"

#include "ZELKAssertion.h"

#include <QBuffer>

#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int samples = 3;
constexpr int rowsOfStrip = 16;
constexpr double pointsInInch = 72.0;

/// A file in memory, as the library writes it: by turns at the end and in what is there already.
struct Memory
{
    QByteArray bytes;
    qsizetype place = 0;

    void write(const void *data, qsizetype size)
    {
        if (place + size > bytes.size()) {
            if (place + size > bytes.capacity())
                bytes.reserve(std::max(place + size, bytes.capacity() * 2));
            bytes.resize(place + size, '\0');
        }
        std::memcpy(bytes.data() + place, data, std::size_t(size));
        place += size;
    }
};

Memory &memory(thandle_t handle)
{
    return *static_cast<Memory *>(handle);
}

// It reads back the directory it has written, to link others to it.
tmsize_t readBytes(thandle_t handle, void *data, tmsize_t size)
{
    Memory &file = memory(handle);
    const qsizetype count = std::clamp<qsizetype>(file.bytes.size() - file.place, 0, size);
    if (count > 0)
        std::memcpy(data, file.bytes.constData() + file.place, std::size_t(count));
    file.place += count;
    return count;
}

tmsize_t writeBytes(thandle_t handle, void *data, tmsize_t size)
{
    return zelkGuard([&] { memory(handle).write(data, size); }) ? size : -1;
}

toff_t seek(thandle_t handle, toff_t offset, int from)
{
    Memory &file = memory(handle);
    const qsizetype base = from == SEEK_SET ? 0 : from == SEEK_CUR ? file.place : file.bytes.size();
    file.place = base + qsizetype(offset);
    return toff_t(file.place);
}

int close(thandle_t)
{
    return 0;
}

toff_t size(thandle_t handle)
{
    return toff_t(memory(handle).bytes.size());
}

void setFields(TIFF *tiff, const QImage &image)
{
    const double resolution = pointsInInch * image.devicePixelRatio();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rowsOfStrip);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, resolution);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, resolution);
}

bool writeRows(TIFF *tiff, const QImage &image)
{
    std::vector<uchar> row(std::size_t(image.width()) * samples);
    for (int y = 0; y < image.height(); ++y) {
        const auto *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        uchar *sample = row.data();
        for (int x = 0; x < image.width(); ++x) {
            *sample++ = uchar(qRed(pixels[x]));
            *sample++ = uchar(qGreen(pixels[x]));
            *sample++ = uchar(qBlue(pixels[x]));
        }
        if (TIFFWriteScanline(tiff, row.data(), uint32_t(y), 0) < 0)
            return false;
    }
    return TIFFFlush(tiff) == 1;
}

} // namespace

QByteArray ZELKGraphImage::PNGRepresentation(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG"))
        return {};
    return bytes;
}

QByteArray ZELKGraphImage::TIFFRepresentation(const QImage &image)
{
    if (image.isNull())
        return {};
    const QImage opaque =
        image.format() == QImage::Format_RGB32 ? image : image.convertToFormat(QImage::Format_RGB32);
    Memory file;
    // "m": the library must not try to map what is no file.
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(
        TIFFClientOpen("graph", "wm", &file, readBytes, writeBytes, seek, close, size, nullptr, nullptr),
        &TIFFClose);
    if (!tiff)
        return {};
    setFields(tiff.get(), opaque);
    return writeRows(tiff.get(), opaque) ? file.bytes : QByteArray();
}
