#include "ZELKElidedLabel.h"

#include "ZELKAssertion.h"

#include <QEvent>
#include <QTextDocument>

ZELKElidedLabel::ZELKElidedLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void ZELKElidedLabel::setFullText(const QString &text)
{
    m_fullText = text.simplified();
    setAccessibleName(m_fullText);
    setToolTip(m_fullText.isEmpty() ? QString() : Qt::convertFromPlainText(m_fullText));
    updateGeometry();
    elide();
}

QSize ZELKElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

QSize ZELKElidedLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(m_fullText) + 2, QLabel::sizeHint().height()};
}

void ZELKElidedLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    zelkGuard([this] { elide(); });
}

void ZELKElidedLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        zelkGuard([this] { elide(); });
}

void ZELKElidedLabel::elide()
{
    setText(fontMetrics().elidedText(m_fullText, Qt::ElideRight, width()));
}
