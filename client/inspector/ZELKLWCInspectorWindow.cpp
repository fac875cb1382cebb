#include "ZELKLWCInspectorWindow.h"

#include "ZELKAssertion.h"
#include "ZELKUserDefaults.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QWindow>

#include <algorithm>

namespace {

constexpr double partOfUsualTime = 0.33;
constexpr double millisecondsInSecond = 1000.0;

QString keyOfFrame(const QString &name)
{
    return ZELKFormat("ZELK Window Frame %@", {name});
}

/// What turns y: the lower edge of the primary screen is 0.
double base()
{
    const QScreen *primary = QGuiApplication::primaryScreen();
    return primary ? primary->geometry().bottom() + 1.0 : 0.0;
}

ZELKUprightRect upright(const QRect &rect)
{
    return ZELKUprightRect::fromTurned(rect, base());
}

} // namespace

ZELKLWCInspectorWindow::ZELKLWCInspectorWindow(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setBackgroundRole(QPalette::Base);
    connect(&m_movement, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        zelkGuard([&] { place(ZELKUprightRect::fromTurned(value.toRectF(), 0.0)); });
    });
}

void ZELKLWCInspectorWindow::floatOver(QWidget &window)
{
    setParent(&window, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
}

void ZELKLWCInspectorWindow::takeKeys()
{
    activateWindow();
    for (QWidget *widget = nextInFocusChain(); widget && widget != this; widget = widget->nextInFocusChain())
        if (isAncestorOf(widget) && widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus))
            return widget->setFocus(Qt::TabFocusReason);
}

// MARK: frame

double ZELKLWCInspectorWindow::animationResizeTime() const
{
    const int usual = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
    return usual / millisecondsInSecond * partOfUsualTime;
}

ZELKUprightRect ZELKLWCInspectorWindow::frame() const
{
    if (m_movement.state() == QAbstractAnimation::Running)
        return ZELKUprightRect::fromTurned(m_movement.endValue().toRectF(), 0.0);
    return upright({pos(), size()});
}

void ZELKLWCInspectorWindow::setFrame(const ZELKUprightRect &frame, bool isAnimated)
{
    const ZELKUprightRect start = upright({pos(), size()});
    m_movement.stop();
    const int time = isAnimated ? qRound(animationResizeTime() * millisecondsInSecond) : 0;
    if (time <= 0 || start == frame)
        return place(frame);
    m_movement.setDuration(time);
    m_movement.setEasingCurve(QEasingCurve::InOutQuad);
    m_movement.setStartValue(start.turned(0.0));
    m_movement.setEndValue(frame.turned(0.0));
    m_movement.start();
}

/// It has exactly the size of its content, so that the user has nothing to gain by another.
void ZELKLWCInspectorWindow::place(const ZELKUprightRect &frame)
{
    const QRect turned = frame.turned(base()).toRect();
    setFixedSize(turned.size());
    if (pos() != turned.topLeft())
        move(turned.topLeft());
}

/// Without what the desktop puts around windows.
ZELKUprightRect ZELKLWCInspectorWindow::screenRect() const
{
    const QScreen *found = QGuiApplication::screenAt(frame().turned(base()).toRect().center());
    if (!found)
        found = screen();
    const QMargins around(0, 0, frameGeometry().width() - width(), frameGeometry().height() - height());
    return upright(found->availableGeometry().marginsRemoved(around));
}

/// A window that is not seen yet may be anywhere when it is; then the screen's corner is a good place.
void ZELKLWCInspectorWindow::placeFirst(const QSizeF &size)
{
    m_hasPlace = true;
    const QWidget &window = *parentWidget()->window();
    const ZELKUprightRect available = upright(window.screen()->availableGeometry());
    const bool isSeen = window.windowHandle() && window.windowHandle()->isExposed();
    place(ZELKPanelFit::beside(isSeen ? upright(window.frameGeometry()) : available, size, available));
}

void ZELKLWCInspectorWindow::fitContent(const QSizeF &size)
{
    if (!m_hasPlace && parentWidget())
        placeFirst(size);
    const ZELKUprightRect before = frame();
    const QSizeF content(before.width, before.height);
    const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    const ZELKPanelFit fit = ZELKPanelFit::of({before, content, screenRect(), double(scrollBar)}, size);
    if (QScrollArea *area = scrollArea())
        area->setVerticalScrollBarPolicy(fit.scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    if (fit.frame != before)
        setFrame(fit.frame, isVisible());
}

// MARK: scrolling

QScrollArea *ZELKLWCInspectorWindow::scrollArea() const
{
    return findChild<QScrollArea *>(QStringLiteral("scrollArea"));
}

void ZELKLWCInspectorWindow::showContent(const QRect &rect)
{
    if (QScrollArea *area = scrollArea())
        area->ensureVisible(rect.center().x(), rect.center().y(), 0, rect.height());
}

int ZELKLWCInspectorWindow::scrollPosition() const
{
    const QScrollArea *area = scrollArea();
    return area ? area->verticalScrollBar()->value() : 0;
}

void ZELKLWCInspectorWindow::setScrollPosition(int position)
{
    if (QScrollArea *area = scrollArea())
        area->verticalScrollBar()->setValue(position);
}

// MARK: memory

void ZELKLWCInspectorWindow::saveFrameUsingName(const QString &name) const
{
    if (m_defaults && m_hasPlace)
        m_defaults->setValue(keyOfFrame(name), frame().string());
}

/// The panel's screen is the one that the frame is on.
bool ZELKLWCInspectorWindow::setFrameUsingName(const QString &name)
{
    if (!m_defaults)
        return false;
    const auto remembered = ZELKUprightRect::fromString(m_defaults->stringForKey(keyOfFrame(name)));
    const QList<QScreen *> screens = QGuiApplication::screens();
    const bool isSeen = remembered && std::any_of(screens.begin(), screens.end(), [&](const QScreen *found) {
                            return remembered->intersects(upright(found->geometry()));
                        });
    if (!isSeen)
        return false;
    m_hasPlace = true;
    setFrame(*remembered, false);
    return true;
}

// MARK: events

/// What closes a window closes this one, not the one with the menu.
bool ZELKLWCInspectorWindow::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::Close))
        event->accept();
    return QWidget::event(event);
}

void ZELKLWCInspectorWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        Q_EMIT visibleChanged(true);
}

/// Also when its window is put away for a while: then it comes back with it.
void ZELKLWCInspectorWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        Q_EMIT visibleChanged(false);
}

void ZELKLWCInspectorWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape || event->matches(QKeySequence::Close))
        close();
    else
        QWidget::keyPressEvent(event);
}

void ZELKLWCInspectorWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        Q_EMIT lookChanged();
}
