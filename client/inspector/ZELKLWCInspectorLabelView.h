#pragma once

#include "ZELKAttributedString.h"
#include "ZELKLabelColours.h"

#include <QImage>
#include <QPalette>
#include <QWidget>

struct ZELKLabelLayout;

/// A title across the panel: a bar in the tint of controls, with a border and a shine.
class ZELKLWCInspectorLabelView : public QWidget
{
    Q_OBJECT

public:
    explicit ZELKLWCInspectorLabelView(QWidget *parent = nullptr);

    const ZELKAttributedString &attributedTitle() const { return m_attributedTitle; }
    void setAttributedTitle(const ZELKAttributedString &title);
    /// A text in the font of small controls, black.
    void setTitle(const QString &title);
    /// Shown as a square at the left; null for none.
    const QImage &image() const { return m_image; }
    void setImage(const QImage &image);
    const QColor &borderColor() const { return m_colours.border; }
    void setBorderColor(const QColor &colour);
    const QColor &insetColor() const { return m_colours.inset; }
    void setInsetColor(const QColor &colour);
    const QColor &backgroundColor() const { return m_colours.background; }
    void setBackgroundColor(const QColor &colour);
    /// Pixels. A stroke of no width is as thin as can be.
    double borderWidth() const { return m_borderWidth; }
    void setBorderWidth(double width);
    double insetWidth() const { return m_insetWidth; }
    void setInsetWidth(double width);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void controlTintDidChange();
    void drawGradientWithBaseColour(QPainter &painter, const QColor &colour, const QRectF &rect) const;
    void drawTitle(QPainter &painter, const ZELKLabelLayout &layout) const;

    ZELKAttributedString m_attributedTitle;
    QImage m_image;
    QPalette m_tint; ///< what the colours were taken from
    ZELKLabelColours m_colours;
    double m_borderWidth = 1.5;
    double m_insetWidth = 0.0;
};
