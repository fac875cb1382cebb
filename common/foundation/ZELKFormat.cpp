#include "ZELKFormat.h"

#include "ZELKDate.h"
#include "ZELKValue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr int greatestWidth = 4096;
constexpr int greatestPrecision = 512;

struct Conversion
{
    bool left = false;
    bool zeros = false;
    bool plus = false;
    bool space = false;
    bool alternate = false;
    bool isLong = false;
    int width = 0;
    std::optional<int> precision;
    char16_t letter = 0;
};

/// Reads conversions one after another and takes their arguments in turn.
class Formatter
{
public:
    Formatter(const QString &format, std::initializer_list<ZELKFormatArgument> arguments)
        : m_format(format)
        , m_next(arguments.begin())
        , m_end(arguments.end())
    {
    }

    QString fill()
    {
        QString text;
        text.reserve(m_format.size() + 32);
        while (m_at < m_format.size()) {
            const qsizetype percent = m_format.indexOf(QLatin1Char('%'), m_at);
            const qsizetype stop = percent < 0 ? m_format.size() : percent;
            text += QStringView(m_format).mid(m_at, stop - m_at);
            m_at = stop;
            if (percent >= 0)
                text += converted();
        }
        return text;
    }

private:
    char16_t peek() const { return m_at < m_format.size() ? m_format.at(m_at).unicode() : u'\0'; }

    QVariant argument() { return m_next == m_end ? QVariant() : (m_next++)->value(); }

    int readNumber(int greatest)
    {
        int number = 0;
        for (; peek() >= u'0' && peek() <= u'9'; ++m_at)
            number = std::min(number * 10 + (peek() - u'0'), greatest);
        return number;
    }

    void readFlags(Conversion &conversion)
    {
        for (;; ++m_at) {
            switch (peek()) {
            case u'-':
                conversion.left = true;
                break;
            case u'0':
                conversion.zeros = true;
                break;
            case u'+':
                conversion.plus = true;
                break;
            case u' ':
                conversion.space = true;
                break;
            case u'#':
                conversion.alternate = true;
                break;
            default:
                return;
            }
        }
    }

    Conversion readConversion()
    {
        Conversion conversion;
        ++m_at;
        readFlags(conversion);
        conversion.width = readNumber(greatestWidth);
        if (peek() == u'.') {
            ++m_at;
            conversion.precision = readNumber(greatestPrecision);
        }
        while (QStringView(u"hlqjzt").contains(QChar(peek()))) {
            conversion.isLong = conversion.isLong || peek() != u'h';
            ++m_at;
        }
        conversion.letter = peek();
        if (m_at < m_format.size())
            ++m_at;
        return conversion;
    }

    QString converted();

    const QString &m_format;
    const ZELKFormatArgument *m_next;
    const ZELKFormatArgument *m_end;
    qsizetype m_at = 0;
};

QString padded(const QString &text, const Conversion &conversion)
{
    return conversion.left ? text.leftJustified(conversion.width) : text.rightJustified(conversion.width);
}

/// A number's sign or prefix, zeros where they are asked for, and its digits.
QString paddedNumber(const QString &prefix, const QString &digits, const Conversion &conversion, bool zeros)
{
    if (!zeros || conversion.left)
        return padded(prefix + digits, conversion);
    return prefix + digits.rightJustified(conversion.width - prefix.size(), QLatin1Char('0'));
}

QString signOf(bool negative, const Conversion &conversion)
{
    if (negative)
        return QStringLiteral("-");
    return conversion.plus ? QStringLiteral("+") : conversion.space ? QStringLiteral(" ") : QString();
}

QString textConverted(const QVariant &value, const Conversion &conversion)
{
    const QString text = ZELKValue::description(value);
    return padded(conversion.precision ? text.left(*conversion.precision) : text, conversion);
}

/// The integer of an argument, as the bits of 64; texts and reals beyond are drawn in.
qlonglong integerOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::ULongLong || value.typeId() == QMetaType::LongLong)
        return value.toLongLong();
    const double real = ZELKValue::doubleValue(value);
    constexpr double bound = 9223372036854775808.0;
    if (std::isnan(real))
        return 0;
    if (real >= bound)
        return std::numeric_limits<qlonglong>::max();
    return real < -bound ? std::numeric_limits<qlonglong>::min() : qlonglong(real);
}

QString integerDigits(qulonglong value, int base, const Conversion &conversion)
{
    const QString digits = QString::number(value, base);
    return digits.rightJustified(conversion.precision.value_or(1), QLatin1Char('0'));
}

QString signedConverted(const QVariant &value, const Conversion &conversion)
{
    const qlonglong integer = integerOf(value);
    const bool isUnsigned = value.typeId() == QMetaType::ULongLong;
    const bool negative = integer < 0 && !isUnsigned;
    const qulonglong size = negative ? 0 - qulonglong(integer) : qulonglong(integer);
    return paddedNumber(signOf(negative, conversion), integerDigits(size, 10, conversion), conversion,
                        conversion.zeros && !conversion.precision);
}

/// Negative values wrap as the C type of the conversion would: an int at 32 bits, a long one at 64.
QString unsignedConverted(const QVariant &value, const Conversion &conversion)
{
    const qlonglong integer = integerOf(value);
    const bool isInt = !conversion.isLong && value.typeId() != QMetaType::ULongLong && integer < 0 &&
                       integer >= std::numeric_limits<int>::min();
    const qulonglong bits = isInt ? qulonglong(quint32(integer)) : qulonglong(integer);
    const int base = conversion.letter == u'u' ? 10 : 16;
    const QString prefix = conversion.alternate && base == 16 && bits ? QStringLiteral("0x") : QString();
    return paddedNumber(prefix, integerDigits(bits, base, conversion), conversion,
                        conversion.zeros && !conversion.precision);
}

QString realConverted(const QVariant &value, const Conversion &conversion)
{
    const double real = ZELKValue::doubleValue(value);
    char buffer[greatestPrecision + std::numeric_limits<double>::max_exponent10 + 16];
    const auto notation = conversion.letter == u'g' ? std::chars_format::general : std::chars_format::fixed;
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, std::abs(real), notation,
                                   conversion.precision.value_or(6))
                         .ptr;
    return paddedNumber(signOf(std::signbit(real), conversion), QString::fromLatin1(buffer, end - buffer),
                        conversion, conversion.zeros && std::isfinite(real));
}

QString characterConverted(const QVariant &value, const Conversion &conversion)
{
    if (value.typeId() == QMetaType::QString)
        return padded(value.toString().left(1), conversion);
    const qlonglong code = integerOf(value);
    if (code == 0)
        return padded(QString(), conversion);
    const bool isCharacter = code > 0 && code <= 0x10ffff && !QChar::isSurrogate(char32_t(code));
    const char32_t character = isCharacter ? char32_t(code) : char32_t(QChar::ReplacementCharacter);
    return padded(QString::fromUcs4(&character, 1), conversion);
}

QString pointerConverted(const QVariant &value, const Conversion &conversion)
{
    return padded(QStringLiteral("0x") + QString::number(qulonglong(integerOf(value)), 16), conversion);
}

QString Formatter::converted()
{
    const qsizetype start = m_at;
    const Conversion conversion = readConversion();
    switch (conversion.letter) {
    case u'%':
        return QStringLiteral("%");
    case u'@':
    case u's':
        return textConverted(argument(), conversion);
    case u'd':
    case u'i':
        return signedConverted(argument(), conversion);
    case u'u':
    case u'x':
        return unsignedConverted(argument(), conversion);
    case u'f':
    case u'g':
        return realConverted(argument(), conversion);
    case u'c':
        return characterConverted(argument(), conversion);
    case u'p':
        return pointerConverted(argument(), conversion);
    default:
        return m_format.mid(start, m_at - start);
    }
}

} // namespace

ZELKFormatArgument::ZELKFormatArgument(const ZELKDate &date)
    : m_value(QVariant::fromValue(date))
{
}

QString ZELKFormat(const QString &format, std::initializer_list<ZELKFormatArgument> arguments)
{
    return Formatter(format, arguments).fill();
}
