#include "ZELKProcessTable.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>

#include <array>

#include <unistd.h>

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The real user of a "status" file.
std::optional<uint> userOf(const QByteArray &status)
{
    constexpr QByteArrayView label("\nUid:\t");
    const qsizetype at = status.indexOf(label);
    if (at < 0)
        return std::nullopt;
    const qsizetype from = at + label.size();
    bool isNumber = false;
    const uint user = status.mid(from, status.indexOf('\t', from) - from).toUInt(&isNumber);
    return isNumber ? std::optional(user) : std::nullopt;
}

} // namespace

std::vector<qint64> ZELKProcessTable::identifiers() const
{
    std::vector<qint64> identifiers;
    const QStringList names = QDir(m_folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QString &name : names) {
        bool isNumber = false;
        const qint64 identifier = name.toLongLong(&isNumber);
        if (isNumber && identifier > 0)
            identifiers.push_back(identifier);
    }
    return identifiers;
}

std::optional<ZELKProcessTable::Process> ZELKProcessTable::process(qint64 identifier) const
{
    // "42 (any text) S 1 …": the text may hold brackets itself, so the fields are counted from its last one.
    constexpr qsizetype stateField = 0;
    constexpr qsizetype parentField = 1;
    constexpr qsizetype startTimeField = 19;
    const QByteArray line = contents(path(identifier, QLatin1String("stat")));
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 1).trimmed().split(' ');
    const std::optional<uint> user = userOf(contents(path(identifier, QLatin1String("status"))));
    if (fields.size() <= startTimeField || !user)
        return std::nullopt;
    Process process;
    process.parent = fields[parentField].toLongLong();
    process.userIdentifier = *user;
    process.startTime = fields[startTimeField].toULongLong();
    process.hasEnded = fields[stateField] == "Z" || fields[stateField] == "X";
    return process;
}

QString ZELKProcessTable::executable(qint64 identifier) const
{
    std::array<char, 4096> target{};
    const QByteArray link = QFile::encodeName(path(identifier, QLatin1String("exe")));
    const ssize_t length = ::readlink(link.constData(), target.data(), target.size());
    if (length <= 0 || std::size_t(length) >= target.size())
        return {};
    return QFile::decodeName(QByteArray(target.data(), length));
}

QByteArray ZELKProcessTable::environmentValue(qint64 identifier, const QByteArray &name) const
{
    const QByteArray beginning = name + '=';
    for (const QByteArray &variable : contents(path(identifier, QLatin1String("environ"))).split('\0'))
        if (variable.startsWith(beginning))
            return variable.mid(beginning.size());
    return {};
}

QString ZELKProcessTable::path(qint64 identifier, QLatin1String name) const
{
    return m_folder + QLatin1Char('/') + QString::number(identifier) + QLatin1Char('/') + name;
}
