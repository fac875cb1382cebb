#include "ZELKKernelAttributes.h"

#include <QFile>

QByteArray ZELKKernelAttributes::bytes(const char *name, qint64 longest) const
{
    QFile file(m_folder + QLatin1Char('/') + QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    return file.read(longest);
}

QString ZELKKernelAttributes::text(const char *name) const
{
    constexpr qint64 longest = 256;
    return printable(QString::fromUtf8(bytes(name, longest)));
}

std::optional<double> ZELKKernelAttributes::number(const char *name) const
{
    bool ok = false;
    const qlonglong value = text(name).toLongLong(&ok);
    return ok ? std::optional<double>(double(value)) : std::nullopt;
}

QString ZELKKernelAttributes::printable(const QString &text)
{
    QString line = text.section(QLatin1Char('\n'), 0, 0);
    line.removeIf([](QChar character) {
        return !character.isPrint() || character.isSurrogate() || character == QChar::ReplacementCharacter;
    });
    return line.trimmed();
}
