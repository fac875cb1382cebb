#pragma once

#include "ZELKPanelFit.h"

#include <QVariantAnimation>
#include <QWidget>

class QScrollArea;
class ZELKUserDefaults;

/// The inspector's panel: it floats over its window without taking the keys from it, moves quickly to the
/// size of its content, and remembers where it was. Its frame is that of the content, in pixels, y upwards
/// from the lower edge of the primary screen; what the desktop puts around it does not count.
class ZELKLWCInspectorWindow : public QWidget
{
    Q_OBJECT

public:
    explicit ZELKLWCInspectorWindow(QWidget *parent = nullptr);

    /// The settings in which frames are kept. Not owned.
    void setDefaults(ZELKUserDefaults *defaults) { m_defaults = defaults; }
    /// Shows over `window` and goes with it; keys go to it until somebody needs them here.
    void floatOver(QWidget &window);
    /// The keys go to its first text.
    void takeKeys();

    /// Seconds that moving to another frame takes: a third of what the platform's animations take; 0 where it
    /// has none.
    double animationResizeTime() const;
    /// Where it is, or is moving to.
    ZELKUprightRect frame() const;
    void setFrame(const ZELKUprightRect &frame, bool isAnimated);
    /// Gives the content that size, or what the screen allows of it; the top right corner keeps its place.
    void fitContent(const QSizeF &size);
    /// Scrolls, where the content does not fit, so that a rectangle of it is seen.
    void showContent(const QRect &rect);
    int scrollPosition() const;
    void setScrollPosition(int position);

    /// Writes the frame as a text to "ZELK Window Frame NAME".
    void saveFrameUsingName(const QString &name) const;
    /// False, with the frame left alone, where nothing is remembered or no screen shows any of it.
    bool setFrameUsingName(const QString &name);

Q_SIGNALS:
    /// By whoever: the program, the close button, Escape.
    void visibleChanged(bool isVisible);
    /// Another font or style; colours are followed by the parts themselves.
    void lookChanged();

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void place(const ZELKUprightRect &frame);
    void placeFirst(const QSizeF &size);
    ZELKUprightRect screenRect() const;
    QScrollArea *scrollArea() const;

    ZELKUserDefaults *m_defaults = nullptr;
    QVariantAnimation m_movement;
    bool m_hasPlace = false; // remembered, or shown before
};
