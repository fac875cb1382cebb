#include "ZELKWindowLook.h"

#include "ZELKAssertion.h"
#include "ZELKMainWindowInterface.h"

#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>

using ZELKMainWindowInterface::outlet;

namespace {

constexpr double edge = 0.6;          // lines at the left and at the right
constexpr double toolBarHeight = 2.1; // lines
constexpr double periodSize = 1.2;    // of the window's font
constexpr double headlineSize = 1.3;  // of the window's font

} // namespace

ZELKWindowLook::ZELKWindowLook(QMainWindow &window)
    : QObject(&window)
    , m_window(window)
{
    measure();
    window.installEventFilter(this);
}

bool ZELKWindowLook::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        zelkGuard([this] { measure(); });
    return QObject::eventFilter(watched, event);
}

void ZELKWindowLook::measure()
{
    measureToolBar();
    enlarge("periodLabel", periodSize);
    enlarge("emptyLabel", headlineSize);
    setMargins("headingLayout", edge, 0.3);
    setMargins("failureLayout", edge, 0.2);
    setMargins("emptyLayout", 3.0, 1.0);
    outlet<QLayout>(m_window, "emptyLayout")->setSpacing(m_window.fontMetrics().height() / 2);
    outlet<QLayout>(m_window, "headingLayout")->setSpacing(m_window.fontMetrics().height() / 2);
    Q_EMIT measured();
}

void ZELKWindowLook::measureToolBar() const
{
    const int line = m_window.fontMetrics().height();
    auto *bar = outlet<QToolBar>(m_window, "toolBar");
    bar->setIconSize(QSize(line, line) * 1.25);
    // A tool bar's own margins do not count in its height; the space in its middle does.
    outlet<QWidget>(m_window, "toolBarSpace")->setMinimumHeight(qRound(line * toolBarHeight));
    const QStyle &style = *bar->style();
    const int own = style.pixelMetric(QStyle::PM_ToolBarFrameWidth, nullptr, bar) +
                    style.pixelMetric(QStyle::PM_ToolBarItemMargin, nullptr, bar);
    const int side = qMax(0, qRound(line * edge) - own);
    outlet<QLayout>(m_window, "rangeChoiceLayout")->setContentsMargins(side, 0, line / 2, 0);
    outlet<QLayout>(m_window, "agentChoiceLayout")->setContentsMargins(line / 2, 0, side, 0);
    m_window.statusBar()->setContentsMargins(line / 3, line / 8, line / 3, line / 8);
    const bool isLast = outlet<QLabel>(m_window, "synchronisationLabel")->isHidden();
    outlet<QLabel>(m_window, "countLabel")->setContentsMargins(0, 0, isLast ? 0 : line, 0);
    outlet<QPushButton>(m_window, "startStopButton")->setIconSize({line, line});
}

void ZELKWindowLook::enlarge(const char *label, double factor) const
{
    QFont font = m_window.font();
    font.setBold(true);
    if (font.pointSizeF() > 0.0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(qRound(font.pixelSize() * factor));
    outlet<QLabel>(m_window, label)->setFont(font);
}

/// In lines of the window's font.
void ZELKWindowLook::setMargins(const char *layout, double horizontally, double vertically) const
{
    const int line = m_window.fontMetrics().height();
    const int across = qRound(line * horizontally);
    const int along = qRound(line * vertically);
    outlet<QLayout>(m_window, layout)->setContentsMargins(across, along, across, along);
}
