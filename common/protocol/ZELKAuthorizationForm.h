#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The external form of an authorization: it names the process that asks for something, so that whoever is
/// asked can compare it with what the bus knows of the caller before it asks polkit about that process.
///
///    0  "LWA1"
///    4  process number          32 bits, big-endian
///    8  user number, real       32 bits
///   12  start of the process    64 bits, clock ticks since boot
///   20  nonce                   12 bytes; one form is good for one request
///
/// It holds no secret: without being that process nobody gains anything by it.
struct ZELKAuthorizationForm
{
    static constexpr qsizetype size = 32;
    static constexpr qsizetype nonceSize = 12;

    quint32 processIdentifier = 0;
    quint32 userIdentifier = 0;
    quint64 startTime = 0;
    QByteArray nonce;

    /// A fresh form of a process, with a nonce nobody can guess; nothing when it is not to be found in the
    /// folder, which is laid out like /proc.
    static std::optional<ZELKAuthorizationForm>
    ofProcess(qint64 identifier, const QString &procFolder = QStringLiteral("/proc"));
    /// Nothing when these are not the bytes of a form.
    static std::optional<ZELKAuthorizationForm> decode(const QByteArray &bytes);
    QByteArray encode() const;

    bool operator==(const ZELKAuthorizationForm &) const = default;
};
