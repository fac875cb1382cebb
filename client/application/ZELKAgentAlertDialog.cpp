#include "ZELKAgentAlertDialog.h"

#include "ZELKAgentInstallation.h"
#include "ZELKAssertion.h"
#include "ZELKInstallAlertView.h"
#include "ZELKInterfaceLoader.h"

#include <QApplication>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace {

constexpr int textWidthInCharacters = 74;

enum Row { MessageRow, InformativeRow, AccessoryRow, ButtonsRow };
enum Column { IconColumn, TextColumn };

QLabel *makeLabel(const QString &text, const char *name, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    return label;
}

} // namespace

ZELKAgentAlertDialog::ZELKAgentAlertDialog(const ZELKAgentAlert &alert, const ZELKAgentInstallation &agent,
                                           QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(QApplication::applicationDisplayName());
    setAccessibleName(alert.message);
    setAccessibleDescription(alert.informative);
    auto *layout = new QGridLayout(this);
    const int spacing = fontMetrics().height();
    layout->setContentsMargins(spacing, spacing, spacing, spacing);
    layout->setHorizontalSpacing(spacing);
    layout->setVerticalSpacing(spacing * 3 / 4);
    layout->setColumnMinimumWidth(TextColumn, textWidthInCharacters * fontMetrics().averageCharWidth());
    layout->setColumnStretch(TextColumn, 1);
    addTexts(alert, *layout);
    addAccessory(alert, agent, *layout);
    addButtons(alert, *layout);
    chooseDefault();
    adjustSize();
}

void ZELKAgentAlertDialog::addTexts(const ZELKAgentAlert &alert, QGridLayout &layout)
{
    auto *picture = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    const QIcon own = QGuiApplication::windowIcon();
    const QIcon icon =
        own.isNull() ? style()->standardIcon(QStyle::SP_MessageBoxInformation, nullptr, this) : own;
    picture->setPixmap(icon.pixmap(QSize(size, size), devicePixelRatioF()));
    layout.addWidget(picture, MessageRow, IconColumn, ButtonsRow, 1, Qt::AlignTop);

    QLabel *message = makeLabel(alert.message, "message", this);
    QFont font = message->font();
    font.setBold(true);
    message->setFont(font);
    layout.addWidget(message, MessageRow, TextColumn);
    layout.addWidget(makeLabel(alert.informative, "informative", this), InformativeRow, TextColumn);
}

void ZELKAgentAlertDialog::addAccessory(const ZELKAgentAlert &alert, const ZELKAgentInstallation &agent,
                                        QGridLayout &layout)
{
    if (alert.accessoryInterface.isEmpty())
        return;
    m_accessory = new ZELKInstallAlertView(alert.accessoryInterface, agent, this);
    layout.addWidget(m_accessory->view(), AccessoryRow, TextColumn);
}

/// In the alert's order on every platform, since its return codes count them.
void ZELKAgentAlertDialog::addButtons(const ZELKAgentAlert &alert, QGridLayout &layout)
{
    auto *row = new QHBoxLayout;
    layout.addLayout(row, ButtonsRow, IconColumn, 1, 2);
    row->setSpacing(fontMetrics().height() / 2);
    row->setContentsMargins(0, fontMetrics().height() / 2, 0, 0);
    row->addStretch(1);
    for (const QString &title : alert.buttons) {
        if (title.isEmpty())
            ZELKAgentAlert::failToAddButton();
        auto *button = new QPushButton(title, this);
        const int code = ZELKAgentAlert::FirstButton + int(m_buttons.size());
        connect(button, &QPushButton::clicked, this, [this, code] { zelkGuard([&] { done(code); }); });
        row->addWidget(button);
        m_buttons.append(button);
    }
    addHelpButton(alert.helpAnchor, *row);
}

void ZELKAgentAlertDialog::addHelpButton(const QString &anchor, QHBoxLayout &row)
{
    if (anchor.isEmpty())
        return;
    const QString table = QStringLiteral("ZELKAgentController");
    auto *button =
        new QPushButton(ZELKInterfaceLoader::text(table, QStringLiteral("ZELKAgentController.help")), this);
    button->setObjectName(QStringLiteral("helpButton"));
    button->setAutoDefault(false);
    button->setShortcut(QKeySequence(QKeySequence::HelpContents));
    connect(button, &QPushButton::clicked, this,
            [this, anchor] { zelkGuard([&] { Q_EMIT helpRequested(anchor); }); });
    row.insertWidget(0, button); // apart from those that answer
}

/// Where nothing can be installed, Return does what still can be done.
void ZELKAgentAlertDialog::chooseDefault()
{
    if (m_accessory && !m_accessory->hasOffer() && !m_buttons.isEmpty())
        m_buttons.constFirst()->setEnabled(false);
    for (QPushButton *button : m_buttons) {
        if (!button->isEnabled())
            continue;
        button->setDefault(true);
        button->setFocus();
        return;
    }
}

int ZELKAgentAlertDialog::locationTag() const
{
    return m_accessory ? m_accessory->locationTag() : 0;
}

void ZELKAgentAlertDialog::done(int code)
{
    const int first = ZELKAgentAlert::FirstButton;
    const int last = first + int(m_buttons.size()) - 1;
    QDialog::done(code >= first && code <= last ? code : last);
}
