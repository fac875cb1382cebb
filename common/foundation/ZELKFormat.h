#pragma once

#include <QString>
#include <QVariant>

#include <initializer_list>
#include <type_traits>

class ZELKDate;

/// An argument of ZELKFormat: a property-list value, or a pointer (nullptr is the nil that shows as
/// "(null)").
class ZELKFormatArgument
{
public:
    ZELKFormatArgument(std::nullptr_t) {}
    ZELKFormatArgument(const QVariant &value)
        : m_value(value)
    {
    }
    ZELKFormatArgument(const QString &text)
        : m_value(text)
    {
    }
    ZELKFormatArgument(const char *utf8)
        : m_value(utf8 ? QVariant(QString::fromUtf8(utf8)) : QVariant())
    {
    }
    ZELKFormatArgument(const ZELKDate &date);
    ZELKFormatArgument(double value)
        : m_value(value)
    {
    }
    template <typename T>
    requires std::is_integral_v<T> ZELKFormatArgument(T value)
        : m_value(QVariant::fromValue(std::conditional_t<std::is_signed_v<T>, qlonglong, qulonglong>(value)))
    {
    }
    ZELKFormatArgument(const void *pointer)
        : m_value(QVariant::fromValue(quintptr(pointer)))
    {
    }

    const QVariant &value() const { return m_value; }

private:
    QVariant m_value;
};

/// Fills a format string. Understood: "%@" (a value's description), "%s", "%d", "%i", "%u", "%ld", "%lu",
/// "%lld",
/// "%x", "%c", "%f", "%lf", "%g", "%p" with the usual flags, width and precision, and "%%". An argument that
/// is missing or nil shows as "(null)" for "%@" and "%s" and as 0 for numbers. Numbers are written in the C
/// locale.
QString ZELKFormat(const QString &format, std::initializer_list<ZELKFormatArgument> arguments = {});

/// The same for a format that is written in the code.
inline QString ZELKFormat(const char *format, std::initializer_list<ZELKFormatArgument> arguments = {})
{
    return ZELKFormat(QString::fromUtf8(format), arguments);
}
