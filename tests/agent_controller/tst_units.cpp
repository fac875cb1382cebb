#include "BusPeer.h"
#include "PropertyLists.h"
#include "Rows.h"
#include "ZELKPolkitAuthorization.h"
#include "ZELKSystemdServiceManagement.h"
#include "ZELKUnitFile.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFileInfo>
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

/// A user's service manager with one unit. It keeps each call and whether the unit's file is there at that
/// time; jobs last for three looks.
class UserManager
{
public:
    UserManager(const QString &unitFile, const QString &failing)
        : m_unitFile(unitFile)
        , m_failing(failing)
    {
    }
    const QStringList &said() const { return m_said; }

private:
    QDBusMessage answer(const QDBusMessage &call)
    {
        const QString method = call.member(), folder = QFileInfo(m_unitFile).path();
        const bool isThere = QFile::exists(m_unitFile);
        if (method == "LoadUnit"_L1)
            return call.createReply(QVariant::fromValue(QDBusObjectPath(u"/unit"_s)));
        if (method == "GetAll"_L1)
            return call.createReply(QVariantMap{{u"LoadState"_s, isThere ? u"loaded"_s : u"not-found"_s},
                                                {u"ActiveState"_s, m_state}});
        if (call.path() == "/job"_L1)
            return ++m_looks < 3 ? call.createReply(0) : call.createErrorReply(QDBusError::UnknownObject, {});
        if (method == "Get"_L1)
            return call.createReply(QVariant::fromValue(QDBusVariant(QStringList{
                folder + u".control"_s, u"/run/user/1/systemd/user"_s, folder, u"/etc/systemd/user"_s})));
        if (!signatures.contains(method + u' ' + call.signature()))
            return call.createErrorReply(QDBusError::UnknownMethod, {});
        m_said += QStringList{method, call.arguments().value(0).toStringList().join(u' '),
                              isThere ? u"with file"_s : u"without file"_s}
                      .join(u' ');
        if (method == m_failing)
            return call.createErrorReply(QDBusError::Failed, u"told to fail"_s);
        m_looks = 0;
        if (method.endsWith("Unit"_L1))
            m_state = method == "StopUnit"_L1     ? u"inactive"_s
                      : m_failing == "service"_L1 ? u"failed"_s
                                                  : u"active"_s;
        return call.createReply(QVariant::fromValue(QDBusObjectPath(u"/job"_s)));
    }

    const QStringList signatures{u"Reload "_s, u"EnableUnitFiles asbb"_s, u"DisableUnitFiles asb"_s,
                                 u"StartUnit ss"_s, u"StopUnit ss"_s};
    QString m_unitFile, m_failing, m_state = u"inactive"_s;
    QStringList m_said;
    int m_looks = 0;
    BusPeer m_peer{QDBusConnection::SessionBus, u"org.freedesktop.systemd1"_s,
                   [this](const QDBusMessage &call) { return answer(call); }};
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
        ZELKDictionary job = listIn(readFile(qEnvironmentVariable("ZELK_MAIN_BUNDLE") + u"/agent.plist"_s));
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
        const QStringList submitted{u"Reload  with file"_s,
                                    u"EnableUnitFiles org.test.agent.service with file"_s,
                                    u"StartUnit org.test.agent.service with file"_s};
        const QStringList removed{u"StopUnit org.test.agent.service with file"_s,
                                  u"DisableUnitFiles org.test.agent.service with file"_s,
                                  u"Reload  without file"_s};
        const Rows<QString, QStringList, bool, bool> row; // what fails; the calls; submitted; removed
        row("well", "", submitted + removed, true, true);
        row("no reload", "Reload", submitted.mid(0, 1) + removed, false);
        row("not enabled", "EnableUnitFiles", submitted.mid(0, 2) + removed, false);
        row("not started", "StartUnit", submitted + removed, false);
        row("ends at once", "service", submitted + removed, false);
        row("not stopped", "StopUnit", submitted + removed.mid(0, 1), true, false);
        row("masked", "masked", QStringList(), false);
    }
    void userJobIsSubmittedAndRemovedInOrder()
    {
        const auto [failing, calls, isSubmitted, isRemoved] = Rows<QString, QStringList, bool, bool>::fetch();
        QTemporaryDir folder;
        const QString unit = folder.filePath(u"systemd/user/org.test.agent.service"_s);
        const bool isMasked = failing == "masked"_L1;
        if (isMasked && QDir().mkpath(QFileInfo(unit).path()))
            QVERIFY(QFile::link(folder.filePath(u"null"_s), unit));
        const UserManager manager(unit, failing);
        const QDBusConnection bus = QDBusConnection::sessionBus();
        ZELKSystemdServiceManagement services(
            bus, bus, 5000,
            {u"/not/asked/for"_s, {{folder.filePath(u"records"_s)}, true}, ZELKInstallerProgram({})});
        QVERIFY(services.isAvailable(ZELKServiceDomain::User));
        QVERIFY(!services.hasJob(label, ZELKServiceDomain::User));
        QCOMPARE(!services.submitJob(ticket(), ZELKServiceDomain::User, {}), isSubmitted);
        QCOMPARE(services.hasJob(label, ZELKServiceDomain::User), isSubmitted);
        QCOMPARE(QFile::exists(folder.filePath(u"records"_s)), !isMasked);
        QCOMPARE(QFileInfo(unit).isSymLink(), isMasked);
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
                                 return failure.isEmpty()
                                            ? BusPeer::verdict(question, false, challenge, detail)
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
