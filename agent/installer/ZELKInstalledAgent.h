#pragma once

#include <QString>
#include <QStringList>

/// Where the agent stands that records for all users: the one place that knows its names and files.
class ZELKInstalledAgent
{
public:
    /// Everything stands below `root`, which is empty but for tests.
    explicit ZELKInstalledAgent(const QString &root = {})
        : m_root(root)
    {
    }

    /// Bus name, bundle identifier, and the beginning of the units' names.
    static QString label() { return QStringLiteral("org.zelk.lullwatch.agent"); }
    /// The one program of its bundle that is ever executed, whatever else the bundle names.
    static QString programName() { return QStringLiteral("lullwatch-agent"); }
    /// Whom it runs as; a person's account hardly begins so.
    static QString user() { return QStringLiteral("_lullwatch"); }
    static QString unitName() { return label() + QStringLiteral(".service"); }
    static QString removalPathName() { return label() + QStringLiteral("-removal.path"); }
    static QString removalServiceName() { return label() + QStringLiteral("-removal.service"); }

    /// What all of it stands below.
    QString root() const { return m_root.isEmpty() ? QStringLiteral("/") : m_root; }
    QString home() const { return m_root + QStringLiteral("/opt/lullwatch"); }
    QString bundleFolder() const { return home() + QStringLiteral("/agents"); }
    QString bundle() const { return bundleFolder() + QLatin1Char('/') + label() + QStringLiteral(".app"); }
    QString program() const { return bundle() + QLatin1Char('/') + programName(); }
    /// What stood there before, until a new one runs.
    QString earlierBundle() const { return home() + QStringLiteral("/earlier.app"); }
    /// A copy of the installer, which the removal runs.
    QString installer() const { return home() + QStringLiteral("/lullwatch-installer"); }

    QString unitFolder() const { return m_root + QStringLiteral("/etc/systemd/system"); }
    QString unit() const { return unitFolder() + QLatin1Char('/') + unitName(); }
    QString removalPath() const { return unitFolder() + QLatin1Char('/') + removalPathName(); }
    QString removalService() const { return unitFolder() + QLatin1Char('/') + removalServiceName(); }
    /// Holds links to the units that are to be started with the system.
    QString wantedFolder() const { return unitFolder() + QStringLiteral("/multi-user.target.wants"); }

    QString policyFolder() const { return m_root + QStringLiteral("/etc/dbus-1/system.d"); }
    QString policy() const { return policyFolder() + QLatin1Char('/') + label() + QStringLiteral(".conf"); }

    /// The agent's own folder while it runs, and the file in it by which it asks for its removal.
    QString runtimeFolder() const { return m_root + QStringLiteral("/run/lullwatch"); }
    QString request() const { return runtimeFolder() + QStringLiteral("/remove-files"); }

    /// The units and the links to them.
    QStringList unitFiles() const;
    /// A file of packaging/ with places and names put in for the words between at signs.
    QByteArray filledTemplate(const QString &name) const;

private:
    QString m_root;
};
