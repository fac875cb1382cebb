#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The desktop's applications menu, as far as one program stands in it.
class ZELKApplicationsMenu
{
public:
    struct Folders
    {
        QString user;        ///< $XDG_DATA_HOME
        QStringList systems; ///< $XDG_DATA_DIRS
        static Folders standard();
    };
    /// What stands in the menu. Icons are files.
    struct Application
    {
        QString identifier; ///< names the entry's and the icon's file
        QString name;
        QString comment;
        QString executable;
        QString icon;
    };

    explicit ZELKApplicationsMenu(Folders folders)
        : m_folders(std::move(folders))
    {
    }

    /// Whether an entry of that identifier, the user's or the system's, starts this very program.
    bool starts(const Application &application) const;
    /// Writes entry and icon into the user's folders, replacing those of before. What went wrong, if
    /// anything.
    std::optional<QString> add(const Application &application) const;
    /// The command of the entry, the user's before the system's; its program found on the search path where
    /// it has none. Empty when there is none.
    QStringList command(const QString &identifier) const;

private:
    Folders m_folders;
};
