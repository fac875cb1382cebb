#include "ZELKAuthorizationForm.h"

#include "ZELKProcessTable.h"

#include <QRandomGenerator>
#include <QtEndian>

#include <array>

namespace {

constexpr QByteArrayView mark("LWA1");
constexpr qsizetype processAt = 4;
constexpr qsizetype userAt = 8;
constexpr qsizetype startAt = 12;
constexpr qsizetype nonceAt = 20;

template <typename Number>
void append(QByteArray &bytes, Number number)
{
    std::array<char, sizeof(Number)> big{};
    qToBigEndian(number, big.data());
    bytes.append(big.data(), qsizetype(big.size()));
}

QByteArray freshNonce()
{
    std::array<quint32, ZELKAuthorizationForm::nonceSize / sizeof(quint32)> numbers{};
    QRandomGenerator::system()->fillRange(numbers.data(), qsizetype(numbers.size()));
    return {reinterpret_cast<const char *>(numbers.data()), ZELKAuthorizationForm::nonceSize};
}

} // namespace

std::optional<ZELKAuthorizationForm> ZELKAuthorizationForm::ofProcess(qint64 identifier,
                                                                      const QString &procFolder)
{
    const auto process = ZELKProcessTable(procFolder).process(identifier);
    if (!process)
        return std::nullopt;
    return ZELKAuthorizationForm{quint32(identifier), process->userIdentifier, process->startTime,
                                 freshNonce()};
}

std::optional<ZELKAuthorizationForm> ZELKAuthorizationForm::decode(const QByteArray &bytes)
{
    if (bytes.size() != size || !bytes.startsWith(mark))
        return std::nullopt;
    const char *data = bytes.constData();
    return ZELKAuthorizationForm{qFromBigEndian<quint32>(data + processAt),
                                 qFromBigEndian<quint32>(data + userAt),
                                 qFromBigEndian<quint64>(data + startAt), bytes.mid(nonceAt)};
}

QByteArray ZELKAuthorizationForm::encode() const
{
    QByteArray bytes = mark.toByteArray();
    append(bytes, processIdentifier);
    append(bytes, userIdentifier);
    append(bytes, startTime);
    return bytes + nonce.leftJustified(nonceSize, '\0', true);
}
