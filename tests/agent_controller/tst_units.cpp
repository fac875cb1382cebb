#include "BusPeer.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKPolkitAuthorization.h"
#include "ZELKPropertyList.h"
#include "ZELKSystemdServiceManagement.h"
#include "ZELKUnitFile.h"

#include <QDBusArgument>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

const QString label = u"org.test.agent"_s;

ZELKDictionary ticket(const QString &key = {}, const QVariant &value = {})
{
    ZELKDictionary made{{u"Label"_s, label}, {u"ProgramArguments"_s, QVariantList{u"/opt/agent"_s}}};
    if (!key.isEmpty())
        made.insert(key, value);
    return made;
}

QVariant dictionary(const QString &key, const QVariant &value)
{
    return QVariant::fromValue(ZELKDictionary{{key, value}});
}

/// user_manager.py, and what it says.
class UserManager
{
public:
    UserManager(const QString &unitFile, const QString &failing)
    {
        m_process.start(u"/usr/bin/python3"_s, {QStringLiteral(USER_MANAGER), unitFile, failing});
        while (!m_process.canReadLine() && m_process.waitForReadyRead(10000)) {
        }
        isReady = m_process.readLine().trimmed() == "ready";
    }
    ~UserManager()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    QStringList said()
    {
        m_process.waitForReadyRead(0);
        return QString::fromUtf8(m_process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    }

    bool isReady = false;

private:
    QProcess m_process;
};

} // namespace

class Units : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeyHasItsLines_data()
    {
        const Rows<QString, QVariant, QString> row;
        const QString program = u"ProgramArguments"_s;
        row("label", "Label", u"50% of\nit"_s, "Description=50%% of it");
        row("words", program, QVariantList{u"/a b"_s, u"-x"_s, u"c \"d\" \\"_s},
            "ExecStart=\"/a b\" \"-x\" \"c \\\"d\\\" \\\\\"");
        row("nothing is expanded", program, QVariantList{u"/$a%b"_s, u"$HOME %h"_s, u";"_s, u""_s},
            "ExecStart=\"/$a%%b\" \"$$HOME %%h\" \";\" \"\"");
        row("control characters", program, QVariantList{u"/a\nb\x7F"_s}, "ExecStart=\"/a\\x0ab\\x7f\"");
        row("no bus name", "", QVariant(), "Type=exec");
        row("bus name", "MachServices", dictionary(u"org.test"_s, true), "Type=dbus\nBusName=org.test");
        row("not kept alive", "", QVariant(), "Restart=no");
        row("kept alive", "KeepAlive", true, "Restart=always");
        row("kept alive after failures", "KeepAlive", dictionary(u"SuccessfulExit"_s, false),
            "Restart=on-failure");
        row("kept alive after success", "KeepAlive", dictionary(u"SuccessfulExit"_s, true),
            "Restart=on-success");
        row("at log-in", "RunAtLoad", true, "\n[Install]\nWantedBy=default.target");
        row("environment", "EnvironmentVariables", dictionary(u"A"_s, u"b \"c\" 5%"_s),
            "Environment=\"A=b \\\"c\\\" 5%%\"");
        row("times", "ExitTimeOut", 7, "TimeoutStopSec=7");
        row("pause", "ThrottleInterval", 3, "RestartSec=3");
        row("gentle", "LowPriorityIO", true, "IOSchedulingClass=idle");
        row("sandbox", "", QVariant(), "NoNewPrivileges=yes");
    }
    void everyKeyHasItsLines()
    {
        const auto [key, value, lines] = Rows<QString, QVariant, QString>::fetch();
        const QString text = ZELKUnitFile::text(ticket(key, value), {{}, false});
        QVERIFY2(text.contains(u'\n' + lines + u'\n'), qPrintable(text));
        QCOMPARE(text.contains("[Install]"_L1), key == "RunAtLoad"_L1);
    }

    void foldersNeedNamespaces()
    {
        const QStringList folders{u"/home/a b"_s};
        QVERIFY(ZELKUnitFile::text(ticket(), {folders, true})
                    .contains("ExecStartPre=+mkdir -p \"/home/a b\"\nReadWritePaths=\"-/home/a b\"\n"_L1));
        QVERIFY(!ZELKUnitFile::text(ticket(), {folders, false}).contains("ProtectSystem"_L1));
        QTemporaryDir settings;
        QVERIFY(!ZELKUnitFile::usersHaveNamespaces(settings.path()));
        writeFile(settings.filePath(u"user/max_user_namespaces"_s), "100\n");
        QVERIFY(ZELKUnitFile::usersHaveNamespaces(settings.path()));
        // What is around the service goes into it, unless the ticket says something else.
        const auto job = ticket(u"EnvironmentVariables"_s, dictionary(u"A"_s, u"ticket"_s));
        const QString text = ZELKUnitFile::text(job, {{}, false, {{u"A"_s, u"b"_s}, {u"C"_s, u"$d e"_s}}});
        QVERIFY(text.contains("Environment=\"A=ticket\"\nEnvironment=\"C=$d e\"\n"_L1));
        writeFile(settings.filePath(u"kernel/unprivileged_userns_clone"_s), "0\n");
        QVERIFY(!ZELKUnitFile::usersHaveNamespaces(settings.path()));
    }

    /// systemd itself reads what our own template becomes.
    void systemdUnderstandsTheUnit()
    {
        const QString analyze = QStandardPaths::findExecutable(u"systemd-analyze"_s);
        if (analyze.isEmpty())
            QSKIP("systemd-analyze is not installed");
        const QByteArray bytes = readFile(qEnvironmentVariable("ZELK_MAIN_BUNDLE") + u"/agent.plist"_s);
        auto job =
            ZELKPropertyList::read({bytes.data(), std::size_t(bytes.size())}).value.value<ZELKDictionary>();
        job.insert(u"Label"_s, label);
        job.insert(u"ProgramArguments"_s, QVariantList{u"/bin/true"_s, u"$HOME \"x\" %h"_s});
        QTemporaryDir folder;
        const QString file = folder.filePath(label + u".service"_s);
        writeFile(file, ZELKUnitFile::text(job, {{folder.path()}, true}).toUtf8());
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(analyze, {u"verify"_s, u"--user"_s, u"--man=no"_s, file});
        QVERIFY(process.waitForFinished());
        const QString words = QString::fromUtf8(process.readAll());
        QVERIFY2(!words.contains(label), qPrintable(words));
    }

    void userJobIsSubmittedAndRemovedInOrder_data()
    {
        const QStringList submitted{u"Reload with file"_s, u"Enable org.test.agent.service with file"_s,
                                    u"Start org.test.agent.service with file"_s};
        const QStringList removed{u"Stop org.test.agent.service with file"_s,
                                  u"Disable org.test.agent.service with file"_s, u"Reload without file"_s};
        const Rows<QString, QStringList, bool, bool> row; // what fails; the calls; submitted; removed
        row("well", "", submitted + removed, true, true);
        row("no reload", "Reload", submitted.mid(0, 1) + removed, false);
        row("not enabled", "Enable", submitted.mid(0, 2) + removed, false);
        row("not started", "Start", submitted + removed, false);
        row("ends at once", "service", submitted + removed, false);
        row("not stopped", "Stop", submitted + removed.mid(0, 1), true, false);
    }
    void userJobIsSubmittedAndRemovedInOrder()
    {
        const auto [failing, calls, isSubmitted, isRemoved] = Rows<QString, QStringList, bool, bool>::fetch();
        QTemporaryDir folder;
        const QString unit = folder.filePath(u"systemd/user/org.test.agent.service"_s);
        UserManager manager(unit, failing);
        QVERIFY(manager.isReady);
        const QDBusConnection bus = QDBusConnection::sessionBus();
        ZELKSystemdServiceManagement services(
            bus, bus, 5000,
            {u"/not/asked/for"_s, {{folder.filePath(u"records"_s)}, true}, ZELKInstallerProgram({})});
        QVERIFY(services.isAvailable(ZELKServiceDomain::User));
        QVERIFY(!services.hasJob(label, ZELKServiceDomain::User));
        QCOMPARE(!services.submitJob(ticket(), ZELKServiceDomain::User, {}), isSubmitted);
        QCOMPARE(services.hasJob(label, ZELKServiceDomain::User), isSubmitted);
        QVERIFY(QFile::exists(folder.filePath(u"records"_s)));
        if (isSubmitted) {
            QCOMPARE(!services.removeJob(label, ZELKServiceDomain::User, {}), isRemoved);
            QCOMPARE(services.hasJob(label, ZELKServiceDomain::User), !isRemoved);
        }
        QCOMPARE(manager.said(), calls);
    }

    void labelsThatNameOtherFilesAreRefused()
    {
        const QDBusConnection none(u"none"_s);
        ZELKSystemdServiceManagement services(none, none);
        for (const QString &name : {u""_s, u"../x"_s, u"a/b"_s, u".x"_s, u"a\nb"_s})
            QCOMPARE(services.removeJob(name, ZELKServiceDomain::User, {})->code(), EINVAL);
        QCOMPARE(services.removeJob(label, ZELKServiceDomain::User, {})->code(), ENOTSUP);
        QVERIFY(!services.isAvailable(ZELKServiceDomain::System));
    }

    void whoAsksForARightIsToldWhyNot_data()
    {
        const Rows<QString, bool, QString, int, QString> row; // failure, challenge, detail; flags; the reason
        row("refused", "", false, "", 3, "refused");
        row("not asked for", "", true, "", 2, "refused");
        row("nobody to ask", "", true, "", 3, "nobodyAsks");
        row("cancelled", "", true, "polkit.dismissed", 3, "dismissed");
        row("no policy", "Action a.b is not registered", false, "", 3, "unknownAction");
        row("broken", "out of order", false, "", 3, "absent");
    }
    void whoAsksForARightIsToldWhyNot()
    {
        const auto [failure, challenge, detail, flags, reason] =
            Rows<QString, bool, QString, int, QString>::fetch();
        const BusPeer polkit(QDBusConnection::SystemBus, u"org.freedesktop.PolicyKit1"_s,
                             [failure, challenge, detail](const QDBusMessage &question) {
                                 QDBusArgument verdict; // (bba{ss}), never authorized
                                 verdict.beginStructure();
                                 verdict << false << challenge << QMap<QString, QString>{{detail, u"true"_s}};
                                 verdict.endStructure();
                                 return failure.isEmpty()
                                            ? question.createReply(QVariant::fromValue(verdict))
                                            : question.createErrorReply(
                                                  u"org.freedesktop.PolicyKit1.Error.Failed"_s, failure);
                             });
        ZELKPolkitAuthorization rights(QDBusConnection::systemBus(), false);
        const auto error = rights.obtainRight(rights.authorization(), u"a.b"_s, unsigned(flags));
        QVERIFY(error);
        QCOMPARE(error->localisedDescription(), u"ZELKAgentController.polkit."_s + reason);
    }

    void installerTellsWhyItFailed_data()
    {
        const Rows<QString, QStringList, QString> row;
        const QStringList asRoot{u"/bin/sh"_s, u"-c"_s};
        const QString key = u"ZELKAgentController."_s;
        row("well", "exit 0", asRoot, QString());
        row("its own words", "echo no room >&2; exit 1", asRoot, "no room");
        row("no words", "exit 1", asRoot, key + u"installer.failed"_s);
        row("dismissed", "exit 126", asRoot, key + u"polkit.dismissed"_s);
        row("refused", "exit 127", asRoot, key + u"polkit.refused"_s);
        row("not there", "/nowhere/installer", QStringList(), "/nowhere/installer: ");
    }
    void installerTellsWhyItFailed()
    {
        const auto [path, runner, problem] = Rows<QString, QStringList, QString>::fetch();
        const auto told = ZELKInstallerProgram(path, runner).run({u"install"_s});
        QCOMPARE(told.has_value(), !problem.isNull());
        QVERIFY2(told.value_or(QString()).startsWith(problem), qPrintable(told.value_or(QString())));
    }
};

QTEST_GUILESS_MAIN(Units)
#include "tst_units.moc"
