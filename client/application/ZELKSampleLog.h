#pragma once

#include "ZELKApplicationSettings.h"

#include <QFile>

#include <optional>

/// The history that comes with the application, for those who want to see a full window at once. It has a
/// profile of its own, and so nothing to do with the user's own log.
///
/// While the object lives, no other run replaces the cache that this one made or found: the database's files
/// must not go while it is open.
class ZELKSampleLog
{
public:
    /// The name of its profile.
    static QString profile();

    explicit ZELKSampleLog(const ZELKApplicationSettings &settings);

    /// Reads the bundle's history into the profile's cache, unless the very same was read before. A history
    /// that has changed begins a new cache, for what is no longer in it would stay in the old one; but not
    /// while another run uses that, which is then as good. Waits for a run that is just making one. What went
    /// wrong, if anything.
    std::optional<QString> prepare();

private:
    bool takePlace();
    bool isThere() const;
    bool make() const;

    ZELKApplicationSettings m_settings;
    QString m_folder;
    QString m_mark; // the file that tells which history the cache was made of
    QFile m_lock;   // shared by who uses the cache, had alone by who makes it
};
