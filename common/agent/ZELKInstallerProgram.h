#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The small program that changes what only the administrator may change.
class ZELKInstallerProgram
{
public:
    /// `path` is the program, and what it is run by ("pkexec") comes before it; the administrator needs
    /// nobody.
    explicit ZELKInstallerProgram(const QString &path, const QStringList &runner = usualRunner());

    /// Where the main bundle has it.
    static QString pathInMainBundle();
    static QStringList usualRunner();

    /// Blocks until it has ended, which may take until the user has given a password. What went wrong, else
    /// nothing.
    std::optional<QString> run(const QStringList &arguments) const;

private:
    QString m_path;
    QStringList m_runner;
};
