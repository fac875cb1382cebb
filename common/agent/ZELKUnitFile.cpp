#include "ZELKUnitFile.h"

#include "ZELKValue.h"

#include <QFile>

namespace {

/// One that cannot start, as when another agent has the bus name, is left alone after some attempts.
constexpr const char *startLimit = "StartLimitIntervalSec=300\nStartLimitBurst=5\n";

/// What a service of the user that only listens and writes its own files can do without. The manager of a
/// user has no capabilities to take away.
constexpr const char *always = "NoNewPrivileges=yes\n"
                               "RestrictAddressFamilies=AF_UNIX AF_NETLINK\n"
                               "RestrictNamespaces=yes\n"
                               "RestrictRealtime=yes\n"
                               "RestrictSUIDSGID=yes\n"
                               "LockPersonality=yes\n"
                               "MemoryDenyWriteExecute=yes\n"
                               "SystemCallArchitectures=native\n"
                               "SystemCallFilter=@system-service\n"
                               "SystemCallFilter=~@privileged\n"
                               "SystemCallErrorNumber=EPERM\n"
                               "UMask=0077\n";

constexpr const char *withNamespaces = "PrivateUsers=yes\n"
                                       "ProtectSystem=strict\n"
                                       "ProtectHome=read-only\n"
                                       "PrivateTmp=yes\n"
                                       "ProtectKernelTunables=yes\n"
                                       "ProtectKernelModules=yes\n"
                                       "ProtectControlGroups=yes\n"
                                       "CapabilityBoundingSet=\n";

bool isTrue(const QVariant &value)
{
    return ZELKValue::intValue(value) != 0;
}

QString line(const char *key, const QString &value)
{
    return QLatin1String(key) + QLatin1Char('=') + value + QLatin1Char('\n');
}

QString escapedCharacter(QChar character)
{
    switch (character.unicode()) {
    case u'"':
    case u'\\':
        return QString(QLatin1Char('\\')) + character;
    case u'%':
        return QStringLiteral("%%");
    default:
        break;
    }
    if (character.unicode() >= 0x20 && character.unicode() != 0x7F)
        return character;
    return QStringLiteral("\\x%1").arg(uint(character.unicode()), 2, 16, QLatin1Char('0'));
}

QString argument(const QString &word)
{
    return ZELKUnitFile::quoted(word).replace(QLatin1Char('$'), QStringLiteral("$$"));
}

/// The program's name is the one word in which "$" is not looked at.
QString command(const QVariantList &words)
{
    QStringList quotedWords;
    for (const QVariant &word : words) {
        const QString text = word.toString();
        quotedWords.append(quotedWords.isEmpty() ? ZELKUnitFile::quoted(text) : argument(text));
    }
    return quotedWords.join(QLatin1Char(' '));
}

/// A whole line as text.
QString plain(const QString &text)
{
    QString result = text.simplified();
    return result.replace(QLatin1Char('%'), QStringLiteral("%%"));
}

QString restart(const QVariant &keepAlive)
{
    if (keepAlive.metaType() != QMetaType::fromType<ZELKDictionary>())
        return isTrue(keepAlive) ? QStringLiteral("always") : QStringLiteral("no");
    const QVariant success = keepAlive.value<ZELKDictionary>().value(QStringLiteral("SuccessfulExit"));
    if (!success.isValid())
        return QStringLiteral("always");
    return isTrue(success) ? QStringLiteral("on-success") : QStringLiteral("on-failure");
}

QString startLines(const ZELKDictionary &ticket)
{
    const auto services = ticket.value(QStringLiteral("MachServices")).value<ZELKDictionary>();
    if (services.isEmpty())
        return line("Type", QStringLiteral("exec"));
    return line("Type", QStringLiteral("dbus")) + line("BusName", plain(services.begin()->first));
}

QString environmentLines(const ZELKDictionary &ticket, QMap<QString, QString> variables)
{
    for (const auto &[name, value] :
         ticket.value(QStringLiteral("EnvironmentVariables")).value<ZELKDictionary>())
        variables.insert(name, value.toString());
    QString lines;
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
        lines +=
            line("Environment", ZELKUnitFile::quoted(variable.key() + QLatin1Char('=') + variable.value()));
    return lines;
}

QString numberLine(const ZELKDictionary &ticket, const char *ticketKey, const char *unitKey)
{
    const QVariant number = ticket.value(QLatin1String(ticketKey));
    return number.isValid() ? line(unitKey, QString::number(ZELKValue::intValue(number))) : QString();
}

QString serviceLines(const ZELKDictionary &ticket, const ZELKUnitFile::Surroundings &surroundings)
{
    QString lines = startLines(ticket) +
                    line("ExecStart", command(ticket.value(QStringLiteral("ProgramArguments")).toList())) +
                    environmentLines(ticket, surroundings.environment) +
                    line("Restart", restart(ticket.value(QStringLiteral("KeepAlive"))));
    lines += numberLine(ticket, "ThrottleInterval", "RestartSec");
    lines += numberLine(ticket, "ExitTimeOut", "TimeoutStopSec");
    lines += numberLine(ticket, "Nice", "Nice");
    if (isTrue(ticket.value(QStringLiteral("LowPriorityIO"))))
        lines += line("IOSchedulingClass", QStringLiteral("idle"));
    return lines;
}

QString sandboxLines(const ZELKUnitFile::Surroundings &surroundings)
{
    QString lines = QLatin1String(always);
    if (!surroundings.hasNamespaces)
        return lines;
    lines += QLatin1String(withNamespaces);
    // A folder that was deleted meanwhile cannot be made from inside, where all around it is read-only; and
    // without it there would be no inside. "+" is before that, and "-" looks away until then.
    for (const QString &folder : surroundings.writableFolders) {
        lines += line("ExecStartPre", QStringLiteral("+mkdir -p ") + argument(folder));
        lines += line("ReadWritePaths", ZELKUnitFile::quoted(QLatin1Char('-') + folder));
    }
    return lines;
}

/// A number in a file of the kernel's settings; `absent` when there is no such setting.
int setting(const QString &path, int absent)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : absent;
}

} // namespace

QString ZELKUnitFile::text(const ZELKDictionary &ticket, const Surroundings &surroundings)
{
    QString text = QStringLiteral("# Written by Lullwatch, and removed by it.\n[Unit]\n") +
                   line("Description", plain(ticket.string(QStringLiteral("Label")))) +
                   QLatin1String(startLimit) + QStringLiteral("\n[Service]\n") +
                   serviceLines(ticket, surroundings) + sandboxLines(surroundings);
    if (isTrue(ticket.value(QStringLiteral("RunAtLoad"))))
        text += QStringLiteral("\n[Install]\nWantedBy=default.target\n");
    return text;
}

QString ZELKUnitFile::quoted(const QString &word)
{
    QString text(QLatin1Char('"'));
    for (const QChar character : word)
        text += escapedCharacter(character);
    return text + QLatin1Char('"');
}

bool ZELKUnitFile::usersHaveNamespaces(const QString &settingsFolder)
{
    return setting(settingsFolder + QStringLiteral("/kernel/unprivileged_userns_clone"), 1) != 0 &&
           setting(settingsFolder + QStringLiteral("/kernel/apparmor_restrict_unprivileged_userns"), 0) ==
               0 &&
           setting(settingsFolder + QStringLiteral("/user/max_user_namespaces"), 0) > 0;
}
