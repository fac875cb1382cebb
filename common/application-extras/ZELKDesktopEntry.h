#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// The main group of a desktop entry file: what a menu shows and starts, or where a link leads.
class ZELKDesktopEntry
{
public:
    /// Nothing when the file cannot be read or has no group "Desktop Entry". Larger files than any entry
    /// needs are not read.
    static std::optional<ZELKDesktopEntry> read(const QString &path);
    static std::optional<ZELKDesktopEntry> parse(const QByteArray &text);

    /// Without the escapes of the file; empty when it is not there. Translations are keys of their own.
    QString value(const QString &key) const { return m_values.value(key); }
    /// Of an entry of type Link, the local file or folder that it stands for; else empty.
    QString linkedPath() const;
    /// The words of its command, quotes and field codes ("%f") taken away; empty when it is malformed.
    QStringList command() const;

    /// A text as it stands in the file as a value: in one line.
    static QByteArray escaped(QString text);
    /// A word as it stands in the file's command line: quoted there, and that escaped.
    static QByteArray quoted(const QString &word);

private:
    QHash<QString, QString> m_values;
};
