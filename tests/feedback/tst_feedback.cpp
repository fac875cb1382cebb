#include "ConsoleLines.h"
#include "Files.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKAddressBook.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKFeedbackController.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QNetworkAccessManager>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// Keeps the one request that it gets, and answers when told to.
class Server
{
public:
    Server() { m_server.listen(QHostAddress::LocalHost); }
    QString address() const { return u"http://127.0.0.1:%1/report"_s.arg(m_server.serverPort()); }
    /// The request, once as much of its body has come as it announces.
    QByteArray request()
    {
        if (!m_socket && QTest::qWaitFor([this] { return m_server.hasPendingConnections(); }))
            m_socket = m_server.nextPendingConnection();
        const bool isWhole = m_socket && QTest::qWaitFor([this] {
                                 m_received += m_socket->readAll();
                                 return isComplete();
                             });
        return isWhole ? m_received : "incomplete: " + m_received;
    }
    void answer(const char *status)
    {
        m_socket->write(QByteArray("HTTP/1.1 ") + status +
                        "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        m_socket->flush();
    }
    void hangUp()
    {
        m_server.close(); // else the request is sent again
        m_socket->abort();
    }
    bool wasAsked() { return m_socket || m_server.hasPendingConnections(); }

private:
    bool isComplete() const
    {
        const qsizetype end = m_received.indexOf("\r\n\r\n");
        const qsizetype length = m_received.toLower().indexOf("content-length: ");
        return end >= 0 &&
               m_received.size() == end + 4 + m_received.mid(length + 16).split('\r').first().toInt();
    }

    QTcpServer m_server;
    QTcpSocket *m_socket = nullptr;
    QByteArray m_received;
};

struct Book : ZELKAddressBook
{
    ZELKAddressCard me() const override
    {
        if (fails)
            throw ZELKAddressBookException(u"closed"_s);
        return card;
    }
    ZELKAddressCard card{u"Ada"_s, u"Lovelace"_s, u"ada@example.org"_s};
    bool fails = false;
};

struct Delegate : ZELKFeedbackControllerDelegate
{
    ZELKDictionary dictionaryForFeedbackController(ZELKFeedbackController &) override { return fields; }
    void feedbackControllerDidFinish(ZELKFeedbackController &) override { ++finished; }
    ZELKDictionary fields;
    int finished = 0;
};

/// The real interface file and texts, with a server of the test's own.
struct Bed
{
    Bed()
    {
        writeFile(
            folder.filePath(u"Info.plist"_s),
            "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>org.example</string>"
            "<key>CFBundleVersion</key><string>1.2</string><key>ZELKFeedbackControllerURL</key><string>" +
                server.address().toUtf8() + "</string></dict></plist>");
        for (const auto *part : {"translations", "ZELKFeedbackController.ui"})
            QFile::link(qEnvironmentVariable("ZELK_MAIN_BUNDLE") + u'/' + QLatin1String(part),
                        folder.filePath(QLatin1String(part)));
        bundle = std::make_shared<ZELKBundle>(folder.path());
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.mainBundle = bundle;
        scope.emplace(environment);
        controller = ZELKFeedbackController::feedbackController(
            {*bundle, network, book, [] { return u"Account Name"_s; }, [] { return 42L; }});
        controller->setDelegate(&delegate);
    }
    void open() { controller->beginModalForWindow(window); }
    template <typename Type>
    Type &find(const char *name) const
    {
        return *controller->window()->findChild<Type *>(QLatin1String(name));
    }
    bool isSending() const { return !find<QPushButton>("reportButton").isEnabled(); }
    QByteArray boundary() const
    {
        return "42ZELKFeedbackController0x" + QByteArray::number(quintptr(controller.get()), 16);
    }

    QTemporaryDir folder;
    Server server;
    std::shared_ptr<ZELKBundle> bundle;
    std::optional<ZELKEnvironmentScope> scope;
    QNetworkAccessManager network;
    Book book;
    Delegate delegate;
    QWidget window;
    std::unique_ptr<ZELKFeedbackController> controller;
};

/// An accounts service that knows one user.
class Accounts : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Accounts")

public:
    int questions = 0;

public Q_SLOTS:
    QDBusObjectPath FindUserById(qlonglong id)
    {
        ++questions;
        return QDBusObjectPath(u"/org/freedesktop/Accounts/User%1"_s.arg(id));
    }
};

class AccountsUser : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Accounts.User")
    Q_PROPERTY(QString RealName READ realName CONSTANT)
    Q_PROPERTY(QString Email READ email CONSTANT)

public:
    QString realName() const { return u"Grace Hopper"_s; }
    QString email() const { return u"grace@example.org"_s; }
};

} // namespace

class FeedbackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBodyIsThis_data()
    {
        const Rows<ZELKDictionary, QByteArray> row;
        const QByteArray file = "Content-Type: application/octet-stream\r\n\r\n";
        row("nothing", ZELKDictionary(), "--B--\r\n");
        row("texts in their order", ZELKDictionary{{u"b"_s, u"ü\n"_s}, {u"a"_s, u""_s}},
            "--B\r\nContent-Disposition: form-data; name=\"b\"\r\n\r\nü\n\r\n"
            "--B\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n\r\n--B--\r\n");
        row("data", ZELKDictionary{{u"log"_s, QByteArray("\0\r\n", 3)}},
            "--B\r\nContent-Disposition: form-data; name=\"log\"; filename=\"log\"\r\n" + file +
                QByteArray("\0\r\n\r\n--B--\r\n", 12));
        row("a file that is not there",
            ZELKDictionary{{u"file"_s, QUrl::fromLocalFile(u"/nowhere/a b.txt"_s)}},
            "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a b.txt\"\r\n" + file +
                "\r\n--B--\r\n");
        row("a number, an address elsewhere",
            ZELKDictionary{{u"n"_s, 5}, {u"u"_s, QUrl(u"http://example.org/x"_s)}},
            "--B\r\n\r\n--B\r\n\r\n--B--\r\n");
    }
    void theBodyIsThis()
    {
        const auto [fields, body] = Rows<ZELKDictionary, QByteArray>::fetch();
        QCOMPARE(ZELKFeedbackController::dataForPOSTWithDictionary(fields, u"B"_s), body);
    }

    void theRequestIsThis()
    {
        Bed bed;
        const QString attached = bed.folder.filePath(u"note.txt"_s);
        writeFile(attached, "inside");
        bed.delegate.fields = {{u"version"_s, u"9"_s}, {u"note"_s, QUrl::fromLocalFile(attached)}};
        bed.book.card.email.clear();
        bed.open();
        bed.find<QPlainTextEdit>("detailView").setPlainText(u"It sleeps 😴"_s);
        QVERIFY(bed.find<QLabel>("sentAlong").text().contains(u"version: 9"_s));
        QVERIFY(bed.find<QLabel>("sentAlong").text().contains(bed.server.address()));
        bed.find<QPushButton>("reportButton").click();

        const QByteArray request = bed.server.request();
        const qsizetype end = request.indexOf("\r\n\r\n") + 2;
        const QList<QByteArray> head = request.first(end).split('\n');
        QCOMPARE(head.first(), "POST /report HTTP/1.1\r");
        QVERIFY2(head.contains("charset: utf-8\r"), request);
        QVERIFY2(head.contains("Content-Type: multipart/form-data; boundary=" + bed.boundary() + '\r'),
                 request);
        const auto part = [&bed](const QByteArray &name) {
            return "--" + bed.boundary() + "\r\nContent-Disposition: form-data; name=\"" + name + '"';
        };
        const QByteArray body = part("name") + "\r\n\r\nAda Lovelace\r\n" + part("detail") +
                                "\r\n\r\nIt sleeps 😴\r\n" + part("product") + "\r\n\r\norg.example\r\n" +
                                part("version") + "\r\n\r\n9\r\n" + part("note") +
                                "; filename=\"note.txt\"\r\nContent-Type: application/octet-stream\r\n\r\n" +
                                "inside\r\n--" + bed.boundary() + "--\r\n";
        QCOMPARE(request.mid(end + 2), body);
        QVERIFY2(head.contains("Content-Length: " + QByteArray::number(body.size()) + '\r'), request);
    }

    void nothingGoesWithoutAClick()
    {
        Bed bed;
        bed.open();
        bed.find<QPlainTextEdit>("detailView").setPlainText(u"secret"_s);
        QTest::keyClick(&bed.find<QLineEdit>("nameField"), Qt::Key_Return);
        QVERIFY(!bed.isSending());
        bed.find<QPushButton>("cancelButton").click();
        bed.controller.reset();
        QCoreApplication::processEvents();
        QVERIFY(!bed.server.wasAsked());
        QCOMPARE(bed.delegate.finished, 1);
    }

    void whatHappensToTheSheet_data()
    {
        const Rows<QByteArray> row; // null: the network fails, and the sheet stays as it is
        row("thanks", "200 OK");
        row("a refusal is an answer", "500 Internal Server Error");
        row("a failure leaves it sending");
    }
    void whatHappensToTheSheet()
    {
        const auto [status] = Rows<QByteArray>::fetch();
        const bool closes = !status.isNull();
        Bed bed;
        bed.open();
        bed.find<QPushButton>("reportButton").click();
        QVERIFY(bed.isSending());
        QVERIFY(!bed.find<QLabel>("progressStatus").text().isEmpty());
        QNetworkReply *reply = bed.controller->connection();
        QSignalSpy finished(reply, &QNetworkReply::finished);
        bed.server.request();
        closes ? bed.server.answer(status) : bed.server.hangUp();
        QVERIFY(finished.count() > 0 || finished.wait());
        QCOMPARE(bed.controller->window()->isVisible(), !closes);
        QCOMPARE(bed.delegate.finished, int(closes));
        if (!closes) {
            QVERIFY(bed.isSending());
            QTest::keyClick(bed.controller->window(), Qt::Key_Escape);
        }
        QVERIFY(!bed.controller->window()->isVisible());
        QVERIFY(!bed.controller->connection());
        QCOMPARE(bed.delegate.finished, 1);
    }

    void reopeningKeepsTheSender()
    {
        Bed bed;
        bed.controller->setMessage(u"Tell"_s);
        bed.open();
        QCOMPARE(bed.find<QLabel>("messageLabel").text(), u"Tell"_s);
        bed.find<QLineEdit>("nameField").setText(u"Somebody"_s);
        bed.find<QPlainTextEdit>("detailView").setPlainText(u"old"_s);
        bed.find<QPushButton>("reportButton").click();
        bed.controller->cancel();
        bed.open();
        QCOMPARE(bed.find<QLineEdit>("nameField").text(), u"Somebody"_s);
        QCOMPARE(bed.find<QPlainTextEdit>("detailView").toPlainText(), QString());
        QVERIFY(!bed.isSending());
        QCOMPARE(bed.find<QLabel>("progressStatus").text(), QString());
    }

    void aBookThatFailsIsPassedOver()
    {
        Bed bed;
        bed.book.card = {{}, u"Lovelace"_s, {}};
        QCOMPARE(bed.controller->usersName(), u"Lovelace"_s);
        bed.book.fails = true;
        const ConsoleLines console;
        QCOMPARE(bed.controller->usersName(), u"Account Name"_s);
        QCOMPARE(bed.controller->usersEmail(), QString());
        QCOMPARE(console.count("Address Book Exception: closed"), 2);
    }

    void whoTheAccountBelongsTo()
    {
        QCOMPARE(ZELKAccountEntry::fromFields(u"ada"_s, u"& Lovelace,Room 3,,"_s).fullName,
                 u"Ada Lovelace"_s);
        QCOMPARE(ZELKAccountEntry::fromFields(u"ada"_s, u""_s).fullName, QString());
        qputenv("EMAIL", "ada@example.org");
        const ZELKAddressCard card = ZELKSystemAddressBook(QDBusConnection::systemBus()).me();
        QCOMPARE(card.email, u"ada@example.org"_s);
        QCOMPARE(card.firstName, ZELKAccountEntry::ofThisUser()->fullName);
        qunsetenv("EMAIL");
    }

    void theAccountsServiceIsAsked()
    {
        // Two connections: one to itself would wait for its own answer.
        QDBusConnection service = QDBusConnection::connectToBus(QDBusConnection::SystemBus, u"accounts"_s);
        Accounts accounts;
        AccountsUser user;
        QVERIFY(service.registerObject(u"/org/freedesktop/Accounts"_s, &accounts,
                                       QDBusConnection::ExportAllSlots));
        QVERIFY(service.registerObject(u"/org/freedesktop/Accounts/User%1"_s.arg(getuid()), &user,
                                       QDBusConnection::ExportAllProperties));
        QVERIFY(service.registerService(u"org.freedesktop.Accounts"_s));
        const ZELKAddressCard known{u"Grace Hopper"_s, {}, u"grace@example.org"_s};
        ZELKAddressCard card;
        std::unique_ptr<QThread> asking(QThread::create([&card] {
            const ZELKSystemAddressBook book(QDBusConnection::systemBus());
            book.me();
            card = book.me();
        }));
        asking->start();
        QVERIFY(QTest::qWaitFor([&] { return asking->isFinished(); }));
        QVERIFY(card == known);
        QCOMPARE(accounts.questions, 1); // each may block the window
        QDBusConnection::disconnectFromBus(u"accounts"_s);
    }

    void aMissingSheetRaises()
    {
        Bed bed;
        QVERIFY(QFile::remove(bed.folder.filePath(u"ZELKFeedbackController.ui"_s)));
        QCOMPARE(raised([&bed] { bed.open(); }), u"ZELKFeedbackController's view is missing."_s);
    }
};

QTEST_MAIN(FeedbackTest)
#include "tst_feedback.moc"
