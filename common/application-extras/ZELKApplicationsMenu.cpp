#include "ZELKApplicationsMenu.h"

#include "ZELKDesktopEntry.h"
#include "ZELKFileManager.h"
#include "ZELKPathResolution.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString entryPath(const QString &dataFolder, const QString &identifier)
{
    return dataFolder + QLatin1String("/applications/") + identifier + QLatin1String(".desktop");
}

QByteArray line(const char *key, const QString &value)
{
    return QByteArray(key) + '=' + ZELKDesktopEntry::escaped(value) + '\n';
}

QByteArray entryText(const ZELKApplicationsMenu::Application &application)
{
    return "[Desktop Entry]\nType=Application\n" + line("Name", application.name) +
           line("Comment", application.comment) + "Exec=" + ZELKDesktopEntry::quoted(application.executable) +
           '\n' + line("TryExec", application.executable) + line("Icon", application.identifier) +
           "Categories=System;Monitor;\n";
}

std::optional<QString> write(const QString &path, const QByteArray &bytes)
{
    if (const auto failure = ZELKFileManager::makeFolder(QFileInfo(path).path()))
        return failure;
    return ZELKFileManager::writeFile(path, bytes);
}

} // namespace

ZELKApplicationsMenu::Folders ZELKApplicationsMenu::Folders::standard()
{
    QStringList all = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    const QString user = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    all.removeAll(user);
    return {user, all};
}

QStringList ZELKApplicationsMenu::command(const QString &identifier) const
{
    for (const QString &folder : QStringList(m_folders.user) + m_folders.systems) {
        const auto entry = ZELKDesktopEntry::read(entryPath(folder, identifier));
        if (!entry || entry->command().isEmpty())
            continue;
        QStringList words = entry->command();
        if (!words.first().startsWith(u'/'))
            words.first() = QStandardPaths::findExecutable(words.first());
        return words.first().isEmpty() ? QStringList() : words;
    }
    return {};
}

bool ZELKApplicationsMenu::starts(const Application &application) const
{
    const QStringList words = command(application.identifier);
    if (words.isEmpty())
        return false;
    const auto started = ZELKPathResolution::resolve(words.first());
    return started.outcome == ZELKPathResolution::Outcome::Resolved &&
           started == ZELKPathResolution::resolve(application.executable);
}

std::optional<QString> ZELKApplicationsMenu::add(const Application &application) const
{
    QFile icon(application.icon);
    if (!icon.open(QIODevice::ReadOnly))
        return icon.errorString();
    const QString iconPath = m_folders.user + QLatin1String("/icons/hicolor/scalable/apps/") +
                             application.identifier + QLatin1String(".svg");
    if (const auto failure = write(iconPath, icon.readAll()))
        return failure;
    return write(entryPath(m_folders.user, application.identifier), entryText(application));
}
