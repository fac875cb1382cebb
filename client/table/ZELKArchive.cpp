#include "ZELKArchive.h"

#include <QDataStream>
#include <QIODevice>
#include <QStringList>

namespace {

constexpr quint16 version = 1;
constexpr auto streamVersion = QDataStream::Qt_6_0;
constexpr QChar rising = QLatin1Char('+');
constexpr QChar falling = QLatin1Char('-');

/// Version, kind, value, and a sum over all three: a stream by itself reads a colour from almost any bytes.
template <typename Value>
QByteArray archived(const QString &kind, const Value &value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << version << kind << value;
    stream << qChecksum(bytes);
    return bytes;
}

template <typename Value>
std::optional<Value> unarchived(const QString &kind, const QByteArray &bytes)
{
    QDataStream stream(bytes);
    stream.setVersion(streamVersion);
    quint16 foundVersion = 0;
    QString foundKind;
    stream >> foundVersion;
    if (foundVersion != version)
        return std::nullopt;
    stream >> foundKind;
    if (foundKind != kind || bytes.size() < qsizetype(sizeof(quint16)))
        return std::nullopt;
    Value value;
    quint16 sum = 0;
    const qsizetype summed = bytes.size() - qsizetype(sizeof(sum));
    stream >> value >> sum;
    if (stream.status() != QDataStream::Ok || !stream.atEnd() || sum != qChecksum(bytes.first(summed)))
        return std::nullopt;
    return value;
}

QString colourKind()
{
    return QStringLiteral("colour");
}

QString descriptorsKind()
{
    return QStringLiteral("sort descriptors");
}

} // namespace

QByteArray ZELKArchive::archivedColour(const QColor &colour)
{
    return archived(colourKind(), colour);
}

std::optional<QColor> ZELKArchive::unarchivedColour(const QByteArray &bytes)
{
    const std::optional<QColor> colour = unarchived<QColor>(colourKind(), bytes);
    return colour && colour->isValid() ? colour : std::nullopt;
}

QByteArray ZELKArchive::archivedSortDescriptors(const ZELKSortDescriptors &descriptors)
{
    QStringList steps;
    for (const ZELKSortDescriptor &descriptor : descriptors)
        steps.append((descriptor.ascending ? rising : falling) + descriptor.key);
    return archived(descriptorsKind(), steps);
}

std::optional<ZELKSortDescriptors> ZELKArchive::unarchivedSortDescriptors(const QByteArray &bytes)
{
    const std::optional<QStringList> steps = unarchived<QStringList>(descriptorsKind(), bytes);
    if (!steps)
        return std::nullopt;
    ZELKSortDescriptors descriptors;
    for (const QString &step : *steps)
        descriptors.append({step.mid(1), step.startsWith(rising)});
    return descriptors;
}
