#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The attributes that the kernel shows as files in one device's folder. What is missing, unreadable or of
/// another kind counts as not given.
class ZELKKernelAttributes
{
public:
    explicit ZELKKernelAttributes(const QString &folder)
        : m_folder(folder)
    {
    }

    /// One line of printable text; empty when it is not given.
    QString text(const char *name) const;
    std::optional<double> number(const char *name) const;
    bool isOn(const char *name) const { return number(name).value_or(0.0) > 0.0; }
    /// At most `longest` bytes.
    QByteArray bytes(const char *name, qint64 longest) const;

    /// The first line of `text` without what no name has: control characters, halves of characters.
    static QString printable(const QString &text);

private:
    QString m_folder;
};
