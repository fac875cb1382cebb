#include "BusConnection.h"
#include "BusPeer.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKAgentRemoval.h"
#include "ZELKAuthorizationCheck.h"
#include "ZELKPolkit.h"

#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr uint somebodyElse = 12345;

ZELKAuthorizationForm ownForm()
{
    return *ZELKAuthorizationForm::ofProcess(::getpid());
}

/// The removal as a service has it.
AnsweringObject::Answer removing(ZELKAgentRemoval &removal)
{
    return [&removal](const QDBusMessage &call) {
        removal.removeAgentFiles(call.arguments().constFirst().toByteArray(), call);
        return QDBusMessage();
    };
}

} // namespace

class Authorisation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formKeepsItsLayout()
    {
        const ZELKAuthorizationForm form{0x01020304, 0x05060708, 0x090A0B0C0D0E0F10, "abcdefghijkl"};
        QCOMPARE(form.encode(), "LWA1\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10"
                                "abcdefghijkl");
        QVERIFY(ZELKAuthorizationForm::decode(form.encode()) == form);
        QCOMPARE(ownForm().processIdentifier, quint32(::getpid()));
        QVERIFY(ownForm().nonce != ownForm().nonce);
        QVERIFY(!ZELKAuthorizationForm::ofProcess(0));
        for (const QByteArray &bytes : {QByteArray(), form.encode().chopped(1), form.encode() + 'x',
                                        QByteArray(ZELKAuthorizationForm::size, '\0')})
            QVERIFY(!ZELKAuthorizationForm::decode(bytes));
    }

    void whoeverAsksIsWhoTheFormNames_data()
    {
        const Rows<ZELKAuthorizationForm, QString> row;
        ZELKAuthorizationForm form = ownForm();
        row("the administrator", form, QString());
        form.processIdentifier = 1;
        row("another process", form, "the form is not the caller's");
        form = ownForm();
        ++form.userIdentifier;
        row("another user", form, "the form is not the caller's");
        form = ownForm();
        ++form.startTime;
        row("a later process of that number", form, "the form is not the caller's");
        row("no form", ZELKAuthorizationForm(), "the form is not the caller's");
    }
    void whoeverAsksIsWhoTheFormNames()
    {
        const auto [form, problem] = Rows<ZELKAuthorizationForm, QString>::fetch();
        const QDBusConnection bus = QDBusConnection::systemBus();
        ZELKAuthorizationCheck check(bus, {5000, u"/proc"_s, ::getuid()});
        const QString answer = ask(check, form, bus.baseService());
        QVERIFY2(problem.isEmpty() ? answer.isEmpty() : answer.startsWith(problem), qPrintable(answer));
        QVERIFY(!ask(check, form, u":1.9999"_s).isEmpty());
        QVERIFY(!ask(check, form, bus.baseService()).isEmpty()); // used, or never good
    }

    void polkitDecides()
    {
        QDBusConnection bus = QDBusConnection::systemBus();
        ZELKAuthorizationCheck check(bus, {500, u"/proc"_s, somebodyElse});
        const auto answer = [&] { return ask(check, ownForm(), bus.baseService()); };
        QVERIFY(answer().startsWith("polkit does not answer: "_L1));
        QString allowed = ZELKPolkit::blessAction();
        const BusPeer polkit(QDBusConnection::SystemBus, u"org.freedesktop.PolicyKit1"_s,
                             [&allowed](const QDBusMessage &question) {
                                 return allowed.isEmpty()
                                            ? QDBusMessage()
                                            : BusPeer::verdict(question,
                                                               question.arguments().value(1) == allowed);
                             });
        QCOMPARE(answer(), u"polkit refuses org.zelk.lullwatch.modify"_s);
        allowed = ZELKPolkit::modifyAction();
        const ZELKAuthorizationForm form = ownForm();
        QCOMPARE(ask(check, form, bus.baseService()), QString());
        QCOMPARE(ask(check, form, bus.baseService()), u"the form was used before"_s);
        allowed.clear(); // it hangs
        QVERIFY(answer().startsWith("polkit does not answer: "_L1));
        QStringList answers;
        for (int number = 0; number <= ZELKAuthorizationCheck::mostAtOnce; ++number)
            check.check(ownForm().encode(), bus.baseService(), u"a"_s, false,
                        [&](const QString &problem) { answers.append(problem); });
        QTRY_COMPARE(answers, QStringList{u"too many ask at once"_s});
        QTRY_COMPARE(answers.size(), ZELKAuthorizationCheck::mostAtOnce + 1);
        QVERIFY(answer().startsWith("polkit does not answer: "_L1)); // as before
    }

    void filesAreRemovedOnRequest_data()
    {
        const Rows<bool, bool, bool> row; // the agent is an installed one, it is removed in time; the answer
        row("removed", true, true, true);
        row("not in time", true, false, false);
        row("none of that kind", false, false, false);
    }
    void filesAreRemovedOnRequest()
    {
        const auto [isInstalled, isRemoved, expected] = Rows<bool, bool, bool>::fetch();
        QTemporaryDir folder;
        const ZELKInstalledAgent place(folder.path());
        if (isInstalled)
            install(place);
        ZELKAgentFiles files(place);
        const int milliseconds = isRemoved ? 20000 : 50;
        QList<bool> answers;
        const auto take = [&](bool removed) { answers.append(removed); };
        files.remove(milliseconds, take);
        QCOMPARE(QFile::exists(place.request()), isInstalled);
        if (isRemoved) {
            files.remove(milliseconds, take); // one at a time
            QTRY_COMPARE(answers, QList{false});
            answers.clear();
            QDir(place.bundle()).removeRecursively();
            QCoreApplication::processEvents();
            QVERIFY(answers.isEmpty());
            QFile::remove(place.unit());
        }
        QTRY_COMPARE(answers, QList{expected});
        QCOMPARE(QFile::exists(place.request()), expected); // it stands until the answer has gone out
        files.finish();
        QVERIFY(!QFile::exists(place.request()));
        if (isRemoved) { // and asked again, since the job's removal did not follow
            files.remove(milliseconds, take);
            QTRY_COMPARE(answers, (QList{true, true}));
            QVERIFY(!QFile::exists(place.request()));
        }
    }

    /// Over the bus: checked, asked for, answered, and only then withdrawn.
    void callIsAnsweredWhenTheFilesAreGone()
    {
        if (::getuid() != 0)
            QSKIP("Only the administrator is let through without polkit");
        QTemporaryDir folder;
        const ZELKInstalledAgent place(folder.path());
        install(place);
        QDBusConnection bus = QDBusConnection::systemBus();
        ZELKAgentRemoval removal(bus, place);
        const BusConnection caller(u"caller"_s, QDBusConnection::SystemBus);
        AnsweringObject service(removing(removal));
        QVERIFY(bus.registerVirtualObject(u"/removal"_s, &service));
        QDBusMessage call = QDBusMessage::createMethodCall(bus.baseService(), u"/removal"_s, QString(),
                                                           u"removeAgentFiles"_s);
        const auto request = [&](const QByteArray &form) {
            call.setArguments({form});
            return std::make_unique<QDBusPendingCallWatcher>(caller.bus.asyncCall(call));
        };
        QTest::ignoreMessage(QtInfoMsg,
                             "The agent's files are not removed: not the form of an authorization.");
        const auto refused = request("nonsense");
        QTRY_VERIFY(refused->isFinished());
        QCOMPARE(QDBusReply<bool>(refused->reply()).value(), false);

        const auto answered = request(ownForm().encode());
        QTRY_VERIFY(QFile::exists(place.request()));
        QVERIFY(!answered->isFinished());
        QDir(place.bundle()).removeRecursively();
        QFile::remove(place.unit());
        QTRY_VERIFY(answered->isFinished());
        QCOMPARE(QDBusReply<bool>(answered->reply()).value(), true);
        QVERIFY(!QFile::exists(place.request()));

        // Where nobody deletes them, the answer comes before the caller gives up.
        install(place);
        ZELKAgentRemoval inVain(bus, place, nullptr, 50);
        AnsweringObject other(removing(inVain));
        bus.unregisterObject(u"/removal"_s);
        QVERIFY(bus.registerVirtualObject(u"/removal"_s, &other));
        const auto late = request(ownForm().encode());
        QTRY_VERIFY_WITH_TIMEOUT(late->isFinished(), 2000);
        QCOMPARE(QDBusReply<bool>(late->reply()).value(), false);
    }

private:
    static QString ask(ZELKAuthorizationCheck &check, const ZELKAuthorizationForm &form,
                       const QString &caller)
    {
        std::optional<QString> answer;
        check.check(form.encode(), caller, ZELKPolkit::modifyAction(), false,
                    [&](const QString &problem) { answer = problem; });
        return QTest::qWaitFor([&] { return answer.has_value(); }) ? *answer : u"no answer"_s;
    }

    static void install(const ZELKInstalledAgent &place)
    {
        writeFile(place.bundle() + u"/agent"_s, "");
        writeFile(place.unit(), "");
        QDir().mkpath(place.runtimeFolder());
    }
};

QTEST_GUILESS_MAIN(Authorisation)
#include "tst_authorisation.moc"
