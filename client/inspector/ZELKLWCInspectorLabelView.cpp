#include "ZELKLWCInspectorLabelView.h"

#include "ZELKAssertion.h"
#include "ZELKLabelLayout.h"
#include "ZELKSystemFonts.h"
#include "ZELKTextDocument.h"
#include "ZELKTextLines.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace {

constexpr double heightInLines = 1.6;
constexpr double widestInCharacters = 40.0; // what is longer is cut

QFontMetricsF metricsOf(const ZELKAttributedString &title)
{
    return QFontMetricsF(ZELKTextDocument::font(title.attributesAt(0)));
}

} // namespace

ZELKLWCInspectorLabelView::ZELKLWCInspectorLabelView(QWidget *parent)
    : QWidget(parent)
    , m_tint(QApplication::palette())
    , m_colours(ZELKLabelColours::initial(m_tint))
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

// MARK: properties

void ZELKLWCInspectorLabelView::setAttributedTitle(const ZELKAttributedString &title)
{
    m_attributedTitle = title;
    setAccessibleName(title.string());
    updateGeometry();
    update();
}

void ZELKLWCInspectorLabelView::setTitle(const QString &title)
{
    ZELKTextAttributes attributes;
    attributes.family = ZELKSystemFonts::family();
    attributes.pointSize = ZELKSystemFonts::smallSystemFontSize();
    attributes.colour = ZELKTextColour::rgb(0, 0, 0);
    setAttributedTitle(ZELKAttributedString(title, attributes));
}

void ZELKLWCInspectorLabelView::setImage(const QImage &image)
{
    m_image = image;
    update();
}

void ZELKLWCInspectorLabelView::setBorderColor(const QColor &colour)
{
    m_colours.border = colour;
    update();
}

void ZELKLWCInspectorLabelView::setInsetColor(const QColor &colour)
{
    m_colours.inset = colour;
    update();
}

void ZELKLWCInspectorLabelView::setBackgroundColor(const QColor &colour)
{
    m_colours.background = colour;
    update();
}

void ZELKLWCInspectorLabelView::setBorderWidth(double width)
{
    m_borderWidth = width;
    update();
}

void ZELKLWCInspectorLabelView::setInsetWidth(double width)
{
    m_insetWidth = width;
    update();
}

QSize ZELKLWCInspectorLabelView::sizeHint() const
{
    const QFontMetricsF metrics = metricsOf(m_attributedTitle);
    const double width = std::min(metrics.horizontalAdvance(m_attributedTitle.string()),
                                  metrics.averageCharWidth() * widestInCharacters);
    return {qRound(width + metrics.height()), qRound(metrics.height() * heightInLines)};
}

// MARK: tint

/// The tint of controls is the whole program's; a widget's own palette may change for other reasons.
void ZELKLWCInspectorLabelView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && QApplication::palette() != m_tint)
        zelkGuard([this] { controlTintDidChange(); });
}

void ZELKLWCInspectorLabelView::controlTintDidChange()
{
    m_tint = QApplication::palette();
    m_colours = ZELKLabelColours::afterTintChange(m_tint);
    update();
}

// MARK: drawing

void ZELKLWCInspectorLabelView::paintEvent(QPaintEvent *)
{
    zelkGuard([this] {
        const ZELKUprightRect label{0.0, 0.0, double(width()), double(height())};
        const ZELKLabelLayout layout =
            ZELKLabelLayout::of(label, m_borderWidth, m_insetWidth, !m_image.isNull());
        const auto turned = [this](const ZELKUprightRect &rect) { return rect.turned(height()); };
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(m_colours.inset, m_insetWidth));
        painter.drawRect(turned(layout.insetFrame));
        painter.setPen(QPen(m_colours.border, m_borderWidth));
        painter.drawRect(turned(label));
        painter.setPen(m_colours.background);
        painter.setBrush(m_colours.background);
        painter.drawRect(turned(layout.top));
        drawGradientWithBaseColour(painter, m_colours.background, turned(layout.bottom));
        if (!m_image.isNull()) {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(turned(layout.image), m_image);
        }
        drawTitle(painter, layout);
    });
}

/// From the lower edge to the upper one.
void ZELKLWCInspectorLabelView::drawGradientWithBaseColour(QPainter &painter, const QColor &colour,
                                                           const QRectF &rect) const
{
    const auto [lower, upper] = ZELKLabelColours::gradient(colour);
    QLinearGradient gradient(rect.bottomLeft(), rect.topLeft());
    gradient.setColorAt(0.0, lower);
    gradient.setColorAt(1.0, upper);
    painter.fillRect(rect, gradient);
}

void ZELKLWCInspectorLabelView::drawTitle(QPainter &painter, const ZELKLabelLayout &layout) const
{
    const double lineHeight = metricsOf(m_attributedTitle).height();
    const ZELKUprightRect &inside = layout.inside;
    const ZELKUprightRect line{layout.titleX, inside.y + (inside.height - lineHeight) / 2.0,
                               inside.maxX() - layout.titleX, lineHeight};
    ZELKTextLines::draw(painter, line.turned(height()), m_attributedTitle, ZELKTextColours::forPaper());
}
