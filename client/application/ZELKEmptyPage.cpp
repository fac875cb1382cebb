#include "ZELKEmptyPage.h"

#include "ZELKAssertion.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKSymbolLabel.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>

using ZELKMainWindowInterface::outlet;

ZELKEmptyPage::ZELKEmptyPage(QMainWindow &window)
    : QObject(&window)
    , m_icon(outlet<ZELKSymbolLabel>(window, "emptyIcon"))
    , m_headline(outlet<QLabel>(window, "emptyLabel"))
    , m_hint(outlet<QLabel>(window, "emptyHint"))
    , m_button(outlet<QPushButton>(window, "emptyButton"))
{
    // An empty list looks like a list.
    auto *page = outlet<QWidget>(window, "emptyPage");
    page->setBackgroundRole(QPalette::Base);
    page->setAutoFillBackground(true);
    for (QLabel *label : {m_headline, m_hint})
        label->setForegroundRole(QPalette::Text);
    m_button->hide();
    connect(m_button, &QPushButton::clicked, this, [this] {
        if (m_remedy)
            m_remedy->trigger();
    });
}

void ZELKEmptyPage::show(const Content &content)
{
    m_icon->setSymbol(content.symbol);
    m_headline->setText(content.headline);
    m_hint->setText(content.hint);
    m_hint->setVisible(!content.hint.isEmpty());
    if (m_remedy)
        m_remedy->disconnect(this);
    m_remedy = content.remedy;
    m_remedyLabel = content.label;
    if (m_remedy)
        connect(m_remedy, &QAction::changed, this, [this] { zelkGuard([this] { followRemedy(); }); });
    followRemedy();
}

void ZELKEmptyPage::followRemedy()
{
    m_button->setVisible(m_remedy && m_remedy->isEnabled());
    // Without its mnemonic, which belongs to the menu.
    if (m_remedy)
        m_button->setText(m_remedyLabel.isEmpty() ? m_remedy->text().remove(QLatin1Char('&'))
                                                  : m_remedyLabel);
}
