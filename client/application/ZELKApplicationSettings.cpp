#include "ZELKApplicationSettings.h"

#include <QRegularExpression>
#include <QStandardPaths>

bool ZELKApplicationSettings::isProfileName(const QString &name)
{
    static const QRegularExpression plain(QStringLiteral("\\A[A-Za-z0-9_-][A-Za-z0-9._-]{0,99}\\z"));
    return plain.match(name).hasMatch();
}

QString ZELKApplicationSettings::profileFolder() const
{
    return QStringLiteral("%1/%2/profiles/%3")
        .arg(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
             bundle->bundleIdentifier(), profile);
}

QString ZELKApplicationSettings::defaultsFile() const
{
    const QString folder = profile.isEmpty()
                               ? QStringLiteral("%1/%2").arg(
                                     QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                                     bundle->bundleIdentifier())
                               : profileFolder();
    return folder + QStringLiteral("/defaults.ini");
}

QString ZELKApplicationSettings::cacheFile() const
{
    if (!databaseFile.isEmpty() || profile.isEmpty())
        return databaseFile;
    return profileFolder() + QStringLiteral("/Lullwatch.lullwatch-events");
}
