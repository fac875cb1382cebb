#pragma once

#include "ZELKBundle.h"

#include <QString>

#include <memory>

/// Where a run of the application keeps its things. A value.
///
/// The usual run keeps settings in $XDG_CONFIG_HOME/IDENTIFIER/defaults.ini and the cache in the documents
/// folder. A profile is a world of its own: everything lies in $XDG_DATA_HOME/IDENTIFIER/profiles/NAME, and
/// there is no agent.
struct ZELKApplicationSettings
{
    /// Never null.
    std::shared_ptr<const ZELKBundle> bundle;
    /// Empty for the usual run.
    QString profile;
    /// The cache's file; empty for the one of the profile or of the usual run.
    QString databaseFile;

    /// A profile's name is a plain file name: letters, digits, ".", "_" and "-", not beginning with a point.
    static bool isProfileName(const QString &name);

    bool knowsAgent() const { return profile.isEmpty(); }
    QString defaultsFile() const;
    /// Empty for the store's own choice.
    QString cacheFile() const;

private:
    QString profileFolder() const;
};
