#include "ZELKValue.h"

#include "ZELKDate.h"
#include "ZELKDictionary.h"

#include <QStringList>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <locale>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <variant>

namespace {

using Number = std::variant<qlonglong, qulonglong, double>;

std::optional<Number> numberOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? 1LL : 0LL;
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return value.toULongLong();
    case QMetaType::Float:
    case QMetaType::Double:
        return value.toDouble();
    default:
        return std::nullopt;
    }
}

/// The shortest digits that read back as the same value; with an exponent only where the zeros would be many.
template <typename Real>
QString realText(Real value)
{
    const double size = std::abs(double(value));
    const bool plain = size == 0.0 || (size >= 1e-5 && size < 1e16);
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    return QString::fromLatin1(buffer, end - buffer);
}

QString listText(const QVariantList &list)
{
    QStringList texts;
    for (const QVariant &item : list)
        texts.append(ZELKValue::description(item));
    return QLatin1Char('(') + texts.join(QStringLiteral(", ")) + QLatin1Char(')');
}

QString dictionaryText(const ZELKDictionary &dictionary)
{
    QStringList texts;
    for (const auto &[key, item] : dictionary)
        texts.append(key + QStringLiteral(" = ") + ZELKValue::description(item));
    return QLatin1Char('{') + texts.join(QStringLiteral("; ")) + QLatin1Char('}');
}

bool isList(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList;
}

QByteArray startOfNumber(const QString &text)
{
    return text.trimmed().toLatin1();
}

double realOfText(const QString &text)
{
    const QByteArray bytes = startOfNumber(text);
    const char *first = bytes.cbegin();
    if (first != bytes.cend() && *first == '+')
        ++first;
    const char *digits =
        first != bytes.cend() && *first == '-' && first == bytes.cbegin() ? first + 1 : first;
    if (digits == bytes.cend() || !(*digits == '.' || (*digits >= '0' && *digits <= '9')))
        return 0.0;
    double value = 0.0;
    const auto [end, error] = std::from_chars(first, bytes.cend(), value);
    if (error == std::errc::result_out_of_range) {
        // A stream draws in to the type's bounds what from_chars only refuses.
        std::istringstream stream(std::string(first, end));
        stream.imbue(std::locale::classic());
        stream >> value;
    }
    return value;
}

int integerOfText(const QString &text)
{
    const QByteArray bytes = startOfNumber(text);
    const bool negative = bytes.startsWith('-');
    qlonglong value = 0;
    for (qsizetype i = negative || bytes.startsWith('+') ? 1 : 0; i < bytes.size(); ++i) {
        if (bytes.at(i) < '0' || bytes.at(i) > '9')
            break;
        value = std::min(value * 10 + (bytes.at(i) - '0'), qlonglong(std::numeric_limits<int>::max()) + 1);
    }
    constexpr auto most = qlonglong(std::numeric_limits<int>::max());
    return int(negative ? -value : std::min(value, most));
}

template <typename Integer>
int drawnIn(Integer value)
{
    if (std::cmp_less(value, std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return std::cmp_greater(value, std::numeric_limits<int>::max()) ? std::numeric_limits<int>::max()
                                                                    : int(value);
}

template <>
int drawnIn(double value)
{
    if (std::isnan(value))
        return 0;
    return int(
        std::clamp(value, double(std::numeric_limits<int>::min()), double(std::numeric_limits<int>::max())));
}

template <typename Integer>
bool sameNumber(Integer integer, double real)
{
    constexpr double bound = double(std::numeric_limits<Integer>::max());
    return real >= double(std::numeric_limits<Integer>::min()) && real < bound && std::trunc(real) == real &&
           Integer(real) == integer;
}

struct SameNumber
{
    bool operator()(double a, double b) const { return a == b; }
    template <typename Integer>
    bool operator()(Integer a, double b) const
    {
        return sameNumber(a, b);
    }
    template <typename Integer>
    bool operator()(double a, Integer b) const
    {
        return sameNumber(b, a);
    }
    template <typename A, typename B>
    bool operator()(A a, B b) const
    {
        return std::cmp_equal(a, b);
    }
};

bool sameLists(const QVariantList &a, const QVariantList &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), ZELKValue::isEqual);
}

} // namespace

QString ZELKValue::description(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("(null)");
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Float:
        return realText(value.toFloat());
    case QMetaType::Double:
        return realText(value.toDouble());
    case QMetaType::QByteArray:
        return QLatin1Char('<') + QString::fromLatin1(value.toByteArray().toHex()) + QLatin1Char('>');
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return listText(value.toList());
    default:
        break;
    }
    if (const auto number = numberOf(value))
        return std::visit([](auto n) { return QString::number(n); }, *number);
    if (value.typeId() == qMetaTypeId<ZELKDate>())
        return value.value<ZELKDate>().description();
    if (value.typeId() == qMetaTypeId<ZELKDictionary>())
        return dictionaryText(value.value<ZELKDictionary>());
    if (value.canConvert<QString>())
        return value.toString();
    return QLatin1Char('<') + QString::fromLatin1(value.typeName()) + QLatin1Char('>');
}

int ZELKValue::intValue(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return integerOfText(value.toString());
    const auto number = numberOf(value);
    return number ? std::visit([](auto n) { return drawnIn(n); }, *number) : 0;
}

double ZELKValue::doubleValue(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return realOfText(value.toString());
    const auto number = numberOf(value);
    return number ? std::visit([](auto n) { return double(n); }, *number) : 0.0;
}

float ZELKValue::floatValue(const QVariant &value)
{
    const double real = doubleValue(value);
    constexpr double most = std::numeric_limits<float>::max();
    return std::isfinite(real) ? float(std::clamp(real, -most, most)) : float(real);
}

bool ZELKValue::isEqual(const QVariant &a, const QVariant &b)
{
    if (!a.isValid() || !b.isValid())
        return false;
    const auto first = numberOf(a);
    const auto second = numberOf(b);
    if (first && second)
        return std::visit(SameNumber(), *first, *second);
    if (isList(a) && isList(b))
        return sameLists(a.toList(), b.toList());
    return a.metaType() == b.metaType() && a == b;
}
