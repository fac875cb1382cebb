#include "ZELKSearchField.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKSymbolIcon.h"
#include "ZELKSymbolLabel.h"
#include "ZELKTextColours.h"

#include <QKeyEvent>
#include <QStyle>
#include <QToolButton>

namespace {

constexpr int usualCharacters = 30;
constexpr int fewestCharacters = 14;

} // namespace

ZELKSearchField::ZELKSearchField(QWidget *parent)
    : QLineEdit(parent)
    , m_glass(new ZELKSymbolLabel(this))
    , m_clear(new QToolButton(this))
{
    const ZELKBundle &bundle = *ZELKEnvironment::current().mainBundle;
    m_glass->setSymbol(QStringLiteral("search"));
    m_glass->setAttribute(Qt::WA_TransparentForMouseEvents);
    const QString clearing =
        ZELKInterfaceLoader::text(QStringLiteral("ZELKSearchField"), QStringLiteral("ZELKSearchField.clear"));
    m_clear->setIcon(ZELKSymbolIcon::icon(bundle, QStringLiteral("clear")));
    m_clear->setAutoRaise(true);
    m_clear->setToolTip(clearing);
    m_clear->setAccessibleName(clearing);
    m_clear->setFocusPolicy(Qt::NoFocus); // Escape does the same
    m_clear->setCursor(Qt::ArrowCursor);
    m_clear->hide();
    connect(m_clear, &QToolButton::clicked, this, &QLineEdit::clear);
    connect(this, &QLineEdit::textChanged, m_clear,
            [this](const QString &text) { m_clear->setVisible(!text.isEmpty()); });
    placeSymbols();
    colourPlaceholder();
}

QSize ZELKSearchField::sizeHint() const
{
    return sizeForCharacters(usualCharacters);
}

QSize ZELKSearchField::minimumSizeHint() const
{
    return sizeForCharacters(fewestCharacters);
}

QSize ZELKSearchField::sizeForCharacters(int count) const
{
    return {count * fontMetrics().averageCharWidth(), QLineEdit::sizeHint().height()};
}

void ZELKSearchField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        if (!text().isEmpty())
            return clear();
        [[fallthrough]];
    case Qt::Key_Down:
    case Qt::Key_Up:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        zelkGuard([this] { Q_EMIT finished(); });
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void ZELKSearchField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    zelkGuard([this] { placeSymbols(); });
}

void ZELKSearchField::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        zelkGuard([this] { placeSymbols(); });
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        zelkGuard([this] { colourPlaceholder(); });
}

/// Dark palettes often have no colour for it of their own, and the usual one is black.
void ZELKSearchField::colourPlaceholder()
{
    QPalette legible = palette();
    const QColor colour = ZELKTextColours::fromPalette(legible).dimmed;
    if (legible.color(QPalette::PlaceholderText) == colour)
        return;
    for (const auto group : {QPalette::Active, QPalette::Inactive})
        legible.setColor(group, QPalette::PlaceholderText, colour);
    setPalette(legible);
}

/// A symbol at each end, as high as the text, which keeps clear of them.
void ZELKSearchField::placeSymbols()
{
    const int side = fontMetrics().height();
    const int gap = style()->pixelMetric(QStyle::PM_DefaultFrameWidth) + side / 5;
    const auto place = [&](QWidget &symbol, bool isFirst) {
        const bool isLeft = isFirst == isLeftToRight();
        symbol.setGeometry(isLeft ? gap : width() - gap - side, (height() - side) / 2, side, side);
    };
    place(*m_glass, true);
    place(*m_clear, false);
    m_clear->setIconSize({side, side});
    setTextMargins(side + gap, 0, side + gap, 0);
}
