#pragma once

#include "ZELKDictionary.h"

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class QLabel;
class QLineEdit;
class QNetworkAccessManager;
class QNetworkReply;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QWidget;
class ZELKAddressBook;
class ZELKBundle;
class ZELKFeedbackController;

/// Who lets people report, and has more to tell than they.
class ZELKFeedbackControllerDelegate
{
public:
    virtual ~ZELKFeedbackControllerDelegate() = default;
    /// Further fields, which replace gathered ones of the same name; an empty dictionary for none. Asked when
    /// the sheet opens, which shows them, and when the report is sent.
    virtual ZELKDictionary dictionaryForFeedbackController(ZELKFeedbackController &controller) = 0;
    /// The sheet was closed, in whatever way.
    virtual void feedbackControllerDidFinish(ZELKFeedbackController &controller) = 0;
};

/// The sheet on which people tell the makers what is wrong. Nothing is sent before they press its button, and
/// it shows all that goes.
///
/// Any answer of the server closes the sheet, also a refusal. A failure of the network leaves it as it is
/// while sending, until the user cancels: what was written is still there to be copied.
class ZELKFeedbackController : public QObject
{
    Q_OBJECT

public:
    /// All to outlive the controller.
    struct World
    {
        const ZELKBundle &bundle; ///< has the address under ZELKFeedbackControllerURL
        QNetworkAccessManager &network;
        const ZELKAddressBook &addressBook;
        /// The user's name when the address book cannot be asked.
        std::function<QString()> fullUserName;
        std::function<long()> random;
    };

    explicit ZELKFeedbackController(World world);
    ~ZELKFeedbackController() override;
    static std::unique_ptr<ZELKFeedbackController> feedbackController(const World &world);

    /// Where the bundle says that reports go to; empty when it does not.
    static QString address(const ZELKBundle &bundle);

    /// Not owned.
    ZELKFeedbackControllerDelegate *delegate() const { return m_delegate; }
    void setDelegate(ZELKFeedbackControllerDelegate *delegate) { m_delegate = delegate; }
    /// Shown above the fields when it is not empty.
    QString message() const { return m_message; }
    void setMessage(const QString &message) { m_message = message; }

    /// The sheet; null before it was first shown, and where its interface file is missing.
    QDialog *window() const { return m_sheet; }
    /// The request in flight.
    QNetworkReply *connection() const { return m_connection; }

    /// Shows the sheet on a window, without waiting. What was written before is gone, name and address of the
    /// sender stay. A missing sheet raises "%@'s view is missing.".
    void beginModalForWindow(QWidget &window);
    void report();
    /// Gives up the request, if one is under way.
    void cancel();

    /// First and last name of the user's card, joined by a space. An address book that throws is one line on
    /// the console, and the system's name for the user stands instead.
    QString usersName() const;
    QString usersEmail() const;

    static QByteArray dataForPOSTWithDictionary(const ZELKDictionary &dictionary, const QString &boundary);

private:
    struct Outlets
    {
        QLabel *messageLabel;
        QLineEdit *nameField;
        QLineEdit *emailField;
        QPlainTextEdit *detailView;
        QLabel *sentAlong;
        QPushButton *reportButton;
        QPushButton *cancelButton;
        QProgressBar *progressIndicator;
        QLabel *progressStatus;
    };

    void loadView();
    void connectView();
    ZELKDictionary fields();
    void showWhatGoesAlong();
    void showSending(bool isSending);
    void replyFinished();
    void connectionDidFinishLoading();
    void sheetDidEnd(int returnCode);

    World m_world;
    ZELKFeedbackControllerDelegate *m_delegate = nullptr;
    QString m_message;
    QPointer<QDialog> m_sheet; // owned by the window it was last shown on
    Outlets m_outlets{};
    QNetworkReply *m_connection = nullptr;
};
