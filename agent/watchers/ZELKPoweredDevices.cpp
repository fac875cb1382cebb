#include "ZELKPoweredDevices.h"

#include "ZELKKernelAttributes.h"

#include <QDir>

namespace {

using Device = ZELKPoweredDevices::Device;

QStringList namesIn(const QDir &folder, const QStringList &patterns = {})
{
    return folder.entryList(patterns, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

QString firstOf(const QStringList &names)
{
    for (const QString &name : names)
        if (!name.isEmpty())
            return name;
    return {};
}

} // namespace

ZELKPoweredDevices::Devices ZELKPoweredDevices::read(Kind kind) const
{
    switch (kind) {
    case Kind::PowerSupply:
        return readSupplies();
    case Kind::Dock:
        return readDocks();
    case Kind::Display:
        return readDisplays();
    }
    return {};
}

/// Batteries are power sources of their own.
ZELKPoweredDevices::Devices ZELKPoweredDevices::readSupplies() const
{
    Devices result;
    const QDir folder(m_folders.powerSupply);
    for (const QString &name : namesIn(folder)) {
        const ZELKKernelAttributes attributes(folder.filePath(name));
        const QString type = attributes.text("type");
        if (type.isEmpty() || type == QLatin1String("Battery") || type == QLatin1String("UPS") ||
            attributes.text("scope") == QLatin1String("Device"))
            continue;
        result[name] = {firstOf({attributes.text("model_name"), name}), attributes.isOn("online")};
    }
    return result;
}

/// Bays for drives and batteries are no docks.
ZELKPoweredDevices::Devices ZELKPoweredDevices::readDocks() const
{
    Devices result;
    const QDir folder(m_folders.platform);
    for (const QString &name : namesIn(folder, {QStringLiteral("dock.*")})) {
        const ZELKKernelAttributes attributes(folder.filePath(name));
        if (attributes.text("type") == QLatin1String("dock_station"))
            result[name] = {name, attributes.isOn("docked")};
    }
    return result;
}

ZELKPoweredDevices::Devices ZELKPoweredDevices::readDisplays() const
{
    constexpr qint64 identificationLength = 128;
    Devices result;
    const QDir folder(m_folders.graphics);
    for (const QString &name : namesIn(folder, {QStringLiteral("card*-*")})) {
        const ZELKKernelAttributes attributes(folder.filePath(name));
        const QString product = displayName(attributes.bytes("edid", identificationLength));
        result[name] = {firstOf({product, name.section(QLatin1Char('-'), 1)}),
                        attributes.text("status") == QLatin1String("connected")};
    }
    return result;
}

/// Four descriptors of 18 bytes; the product's name is in the one of kind 0xFC, ended by a line feed.
QString ZELKPoweredDevices::displayName(const QByteArray &identification)
{
    constexpr qsizetype first = 54, length = 18, count = 4, head = 5;
    static const QByteArray mark("\0\0\0\xFC\0", head);
    for (qsizetype at = first; at < first + count * length; at += length) {
        const QByteArray descriptor = identification.mid(at, length);
        if (descriptor.size() == length && descriptor.startsWith(mark))
            return ZELKKernelAttributes::printable(QString::fromLatin1(descriptor.mid(head)));
    }
    return {};
}
