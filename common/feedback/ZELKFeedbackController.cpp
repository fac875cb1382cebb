#include "ZELKFeedbackController.h"

#include "ZELKAddressBook.h"
#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKConsole.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKMultipartBody.h"

#include <QDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>

#include <utility>

namespace {

constexpr int leastLines = 8; // of what is told, whatever the font

QString className()
{
    return QStringLiteral("ZELKFeedbackController");
}

QString text(const char *topic)
{
    return ZELKInterfaceLoader::textOfTopic(className(), topic);
}

template <typename Type>
Type *outlet(const QWidget &root, const char *name)
{
    return ZELKInterfaceLoader::outlet<Type>(root, className(), name);
}

void log(const ZELKAddressBookException &exception)
{
    ZELKConsole::log(ZELKFormat("Address Book Exception: %@", {exception.reason()}));
}

/// A server that was reached has answered, whatever it thinks of what it got.
bool isAnswer(const QNetworkReply &reply)
{
    return reply.error() == QNetworkReply::NoError ||
           (reply.error() > QNetworkReply::UnknownProxyError &&
            reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid());
}

} // namespace

ZELKFeedbackController::ZELKFeedbackController(World world)
    : m_world(std::move(world))
{
}

ZELKFeedbackController::~ZELKFeedbackController()
{
    if (m_connection) {
        m_connection->disconnect(this);
        delete m_connection;
    }
    if (m_sheet) {
        m_sheet->disconnect(this);
        delete m_sheet;
    }
}

std::unique_ptr<ZELKFeedbackController> ZELKFeedbackController::feedbackController(const World &world)
{
    return std::make_unique<ZELKFeedbackController>(world);
}

QString ZELKFeedbackController::address(const ZELKBundle &bundle)
{
    return bundle.infoDictionary().string(QStringLiteral("ZELKFeedbackControllerURL"));
}

// MARK: the sheet

void ZELKFeedbackController::loadView()
{
    std::unique_ptr<QWidget> root = ZELKInterfaceLoader::loadIfSound(m_world.bundle, className());
    if (!qobject_cast<QDialog *>(root.get()))
        return;
    m_outlets = {outlet<QLabel>(*root, "messageLabel"),      outlet<QLineEdit>(*root, "nameField"),
                 outlet<QLineEdit>(*root, "emailField"),     outlet<QPlainTextEdit>(*root, "detailView"),
                 outlet<QLabel>(*root, "sentAlong"),         outlet<QPushButton>(*root, "reportButton"),
                 outlet<QPushButton>(*root, "cancelButton"), outlet<QProgressBar>(*root, "progressIndicator"),
                 outlet<QLabel>(*root, "progressStatus")};
    m_sheet = static_cast<QDialog *>(root.release());
    connectView();
    m_outlets.detailView->setMinimumHeight(m_outlets.detailView->fontMetrics().lineSpacing() * leastLines);
    m_outlets.nameField->setText(usersName());
    m_outlets.emailField->setText(usersEmail());
}

void ZELKFeedbackController::connectView()
{
    connect(m_outlets.reportButton, &QPushButton::clicked, this, [this] { zelkGuard([this] { report(); }); });
    connect(m_outlets.cancelButton, &QPushButton::clicked, this, [this] { zelkGuard([this] { cancel(); }); });
    connect(m_sheet, &QDialog::finished, this,
            [this](int returnCode) { zelkGuard([&] { sheetDidEnd(returnCode); }); });
}

void ZELKFeedbackController::beginModalForWindow(QWidget &window)
{
    if (!m_sheet)
        loadView();
    if (!m_sheet)
        ZELKAssertion::fail(QStringLiteral("common/feedback/") + className(), 0,
                            ZELKFormat("%@'s view is missing.", {className()}));
    m_outlets.detailView->clear();
    showSending(false);
    if (!m_message.isEmpty())
        m_outlets.messageLabel->setText(m_message);
    showWhatGoesAlong();
    m_outlets.detailView->setFocus();
    m_sheet->setParent(&window, m_sheet->windowFlags() | Qt::Dialog);
    m_sheet->setWindowModality(Qt::WindowModal);
    m_sheet->open();
}

/// The fields that nobody types, and where all goes to.
void ZELKFeedbackController::showWhatGoesAlong()
{
    QStringList lines;
    for (const auto &[key, value] : fields())
        if (key != QLatin1String("name") && key != QLatin1String("email") && key != QLatin1String("detail"))
            lines.append(ZELKFormat("%@: %@", {key, value}));
    lines.append(ZELKFormat(text("sentTo"), {address(m_world.bundle)}));
    m_outlets.sentAlong->setText(lines.join(QLatin1Char('\n')));
    // What lines are broken to is in no size that the window would take by itself.
    const QSize size = m_sheet->size();
    m_sheet->resize(size.expandedTo({0, m_sheet->layout()->totalHeightForWidth(size.width())}));
}

void ZELKFeedbackController::showSending(bool isSending)
{
    m_outlets.reportButton->setEnabled(!isSending);
    m_outlets.progressIndicator->setVisible(isSending);
    m_outlets.progressStatus->setVisible(isSending);
    m_outlets.progressStatus->setText(isSending ? text("connecting") : QString());
}

void ZELKFeedbackController::cancel()
{
    m_sheet->reject();
}

void ZELKFeedbackController::sheetDidEnd(int /*returnCode*/)
{
    m_sheet->hide();
    if (QNetworkReply *connection = std::exchange(m_connection, nullptr)) {
        connection->disconnect(this);
        connection->abort();
        connection->deleteLater();
    }
    if (m_delegate)
        m_delegate->feedbackControllerDidFinish(*this);
}

// MARK: sending

ZELKDictionary ZELKFeedbackController::fields()
{
    ZELKDictionary fields;
    const auto insertUnlessEmpty = [&fields](const char *key, const QString &value) {
        if (!value.isEmpty())
            fields.insert(QString::fromLatin1(key), value);
    };
    insertUnlessEmpty("name", m_outlets.nameField->text());
    insertUnlessEmpty("email", m_outlets.emailField->text());
    insertUnlessEmpty("detail", m_outlets.detailView->toPlainText());
    fields.insert(QStringLiteral("product"), m_world.bundle.bundleIdentifier());
    fields.insert(QStringLiteral("version"),
                  m_world.bundle.infoDictionary().string(QStringLiteral("CFBundleVersion")));
    if (m_delegate)
        for (const auto &[key, value] : m_delegate->dictionaryForFeedbackController(*this))
            fields.insert(key, value);
    return fields;
}

void ZELKFeedbackController::report()
{
    const QString boundary =
        ZELKFormat("%ld%@%p", {m_world.random(), className(), static_cast<const void *>(this)});
    const QByteArray body = dataForPOSTWithDictionary(fields(), boundary);
    QNetworkRequest request{QUrl(address(m_world.bundle))};
    request.setRawHeader("Content-Length", ZELKFormat("%d", {body.size()}).toUtf8());
    request.setRawHeader("Content-Type", ZELKFormat("multipart/form-data; boundary=%@", {boundary}).toUtf8());
    request.setRawHeader("charset",
                         "utf-8"); // beside the content type, not in it: the service looks for it there
    m_connection = m_world.network.post(request, body);
    connect(m_connection, &QNetworkReply::finished, this, [this] { zelkGuard([this] { replyFinished(); }); });
    showSending(true);
}

void ZELKFeedbackController::replyFinished()
{
    if (m_connection && isAnswer(*m_connection))
        connectionDidFinishLoading();
}

void ZELKFeedbackController::connectionDidFinishLoading()
{
    std::exchange(m_connection, nullptr)->deleteLater();
    m_sheet->accept();
}

QByteArray ZELKFeedbackController::dataForPOSTWithDictionary(const ZELKDictionary &dictionary,
                                                             const QString &boundary)
{
    return ZELKMultipartBody::make(dictionary, boundary);
}

// MARK: who reports

QString ZELKFeedbackController::usersName() const
{
    try {
        const ZELKAddressCard card = m_world.addressBook.me();
        QStringList names{card.firstName, card.lastName};
        names.removeAll(QString());
        return names.join(QLatin1Char(' '));
    } catch (const ZELKAddressBookException &exception) {
        log(exception);
        return m_world.fullUserName();
    }
}

QString ZELKFeedbackController::usersEmail() const
{
    try {
        return m_world.addressBook.me().email;
    } catch (const ZELKAddressBookException &exception) {
        log(exception);
        return {};
    }
}
