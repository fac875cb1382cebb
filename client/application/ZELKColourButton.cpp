#include "ZELKColourButton.h"

#include "ZELKAssertion.h"

#include <QColorDialog>
#include <QEvent>
#include <QPainter>

ZELKColourButton::ZELKColourButton(QWidget *parent)
    : QPushButton(parent)
{
    connect(this, &QPushButton::clicked, this, [this] { zelkGuard([this] { choose(); }); });
    showColour();
}

void ZELKColourButton::setColour(const QColor &colour)
{
    m_colour = colour;
    showColour();
}

void ZELKColourButton::choose()
{
    auto *dialog = new QColorDialog(m_colour, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(accessibleName());
    const auto take = [this](const QColor &colour) { zelkGuard([&] { this->take(colour); }); };
    connect(dialog, &QColorDialog::currentColorChanged, this, take);
    connect(dialog, &QColorDialog::rejected, this, [take, before = m_colour] { take(before); });
    dialog->open();
}

void ZELKColourButton::take(const QColor &colour)
{
    if (!colour.isValid() || colour == m_colour)
        return;
    setColour(colour);
    Q_EMIT colourChosen(colour);
}

/// A swatch two letters wide and as high as the text; the colour's number beside it.
void ZELKColourButton::showColour()
{
    const QSize size(2 * fontMetrics().height(), fontMetrics().height());
    QPixmap swatch(size * devicePixelRatio());
    swatch.setDevicePixelRatio(devicePixelRatio());
    swatch.fill(Qt::transparent);
    QPainter painter(&swatch);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(m_colour);
    const double radius = size.height() / 4.0;
    painter.drawRoundedRect(QRectF(QPointF(), size).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.end();
    setIconSize(size);
    setIcon(swatch);
    setText(m_colour.name());
    setAccessibleDescription(m_colour.name());
}

void ZELKColourButton::changeEvent(QEvent *event)
{
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange)
        zelkGuard([this] { showColour(); });
}
