#include "ZELKLWCEntriesView.h"

#include "ZELKAccessibleEntriesView.h"
#include "ZELKAssertion.h"
#include "ZELKGraphColours.h"
#include "ZELKGraphDescription.h"
#include "ZELKGraphImage.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntry.h"

#include <QApplication>
#include <QDrag>
#include <QHelpEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace {

// In lines and characters of the view's font.
constexpr int usualLines = 14;
constexpr int fewestLines = 7;
constexpr int usualCharacters = 100;
constexpr int fewestCharacters = 30;

// Who looks for the nearest entry finds none at the very date of the last one, and the last one after it.
constexpr double moment = 0.001; // seconds

// Without a new size for so long it is taken to be the last.
constexpr int resizingPause = 120; // milliseconds

constexpr Qt::KeyboardModifiers draggingKeys = Qt::AltModifier | Qt::ControlModifier;

} // namespace

ZELKLWCEntriesView::ZELKLWCEntriesView(QWidget *parent)
    : QWidget(parent)
{
    ZELKAccessibleEntriesView::install();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_resizing.setSingleShot(true);
    m_resizing.setInterval(resizingPause);
    connect(&m_resizing, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    connect(&m_queue, &ZELKNotificationQueue::posted, this, [this] { zelkGuard([this] { redisplay(); }); });
}

void ZELKLWCEntriesView::awakeFromNib()
{
    m_cell.setLog(m_log);
    m_cell.setDateRange(m_dateRange);
    const auto follow = [this] { zelkGuard([this] { dataDidChange(); }); };
    if (m_log && !m_listedEntries)
        m_listedEntries = [this](ZELKDate date) { return visibleNeighbours(date); };
    if (m_log)
        connect(m_log, &ZELKLWCLog::visibleEntriesDidChange, this, follow);
    if (m_dateRange)
        connect(m_dateRange, &ZELKLWCDateRangeController::absoluteDurationChanged, this, follow);
    dataDidChange();
}

// MARK: showing

void ZELKLWCEntriesView::dataDidChange()
{
    m_cell.setDataSourceChanged(true);
    m_description.reset();
    if (underMouse())
        QToolTip::hideText(); // it told of what was here
    m_queue.enqueue(QStringLiteral("redisplay"));
}

void ZELKLWCEntriesView::redisplay()
{
    update();
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

QString ZELKLWCEntriesView::description() const
{
    if (!m_description && m_log && m_dateRange) {
        QStringList parts{labelTopLeft().string().simplified(), labelBanner().string().simplified(),
                          ZELKGraphDescription::description(*m_log, *m_dateRange)};
        parts.removeAll(QString());
        m_description = parts.join(QLatin1Char('\n'));
    }
    return m_description.value_or(QString());
}

void ZELKLWCEntriesView::setTitled(bool titled)
{
    m_cell.setTitled(titled);
    update();
}

void ZELKLWCEntriesView::setBordered(bool bordered)
{
    m_cell.setBordered(bordered);
    update();
}

void ZELKLWCEntriesView::setLabelTopLeft(const ZELKAttributedString &label)
{
    if (label == labelTopLeft())
        return;
    m_cell.setLabelTopLeft(label);
    dataDidChange();
}

void ZELKLWCEntriesView::setLabelBanner(const ZELKAttributedString &label)
{
    if (label == labelBanner())
        return;
    m_cell.setLabelBanner(label);
    dataDidChange();
}

QSize ZELKLWCEntriesView::sizeHint() const
{
    return {usualCharacters * fontMetrics().averageCharWidth(), usualLines * fontMetrics().lineSpacing()};
}

QSize ZELKLWCEntriesView::minimumSizeHint() const
{
    return {fewestCharacters * fontMetrics().averageCharWidth(), fewestLines * fontMetrics().lineSpacing()};
}

void ZELKLWCEntriesView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
    case QEvent::LocaleChange:
    case QEvent::LanguageChange:
        updateGeometry();
        zelkGuard([this] { dataDidChange(); });
        break;
    default:
        break;
    }
}

/// Full drawings of very many entries would lag behind the edge that is being dragged.
void ZELKLWCEntriesView::resizeEvent(QResizeEvent *)
{
    if (m_log && m_log->countOfVisibleEntries() > m_mostEntriesWhileResizing)
        m_resizing.start();
}

void ZELKLWCEntriesView::paintEvent(QPaintEvent *)
{
    zelkGuard([this] {
        QPainter painter(this);
        if (!m_resizing.isActive() || !m_cell.drawStretchedWithFrame(painter, QRectF(rect())))
            m_cell.drawInteriorWithFrame(painter, QRectF(rect()));
        if (!hasFocus())
            return;
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    });
}

QImage ZELKLWCEntriesView::imageValue() const
{
    return m_cell.imageValueWithWidth(float(width()), float(height()), devicePixelRatioF());
}

QImage ZELKLWCEntriesView::imageValueWithWidth(float width, float height) const
{
    return m_cell.imageValueWithWidth(width, height);
}

QByteArray ZELKLWCEntriesView::PNGRepresentation() const
{
    return ZELKGraphImage::PNGRepresentation(imageValue());
}

bool ZELKLWCEntriesView::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    zelkGuard([&] { showToolTip(*static_cast<QHelpEvent *>(event)); });
    return true;
}

void ZELKLWCEntriesView::showToolTip(const QHelpEvent &event)
{
    const ZELKLWCEntriesViewState *block = m_cell.drawing().displayList().blockAtPoint(
        unflipped(event.pos()), ZELKGraphColours::colouredStates());
    if (!block || !block->entry) {
        QToolTip::hideText();
        return;
    }
    const ZELKPixelSpace space{double(height())};
    QToolTip::showText(event.globalPos(), block->entry->stringForToolTip(), this,
                       space.turned(block->bounds).toAlignedRect());
}

// MARK: pointing

void ZELKLWCEntriesView::setSelection(std::optional<ZELKDate> selection)
{
    m_cell.setSelection(selection);
}

QVariant ZELKLWCEntriesView::selectionValue() const
{
    return selection() ? QVariant::fromValue(*selection()) : QVariant();
}

void ZELKLWCEntriesView::selectAt(QPointF position)
{
    if (m_cell.selectDateAtPoint(unflipped(position)))
        Q_EMIT selectionDidChange();
}

void ZELKLWCEntriesView::startTracking(const QMouseEvent &event)
{
    m_isTracking = true;
    m_dragOrigin.reset();
    if (event.modifiers() & draggingKeys)
        m_dragOrigin = event.position();
    selectAt(event.position());
}

void ZELKLWCEntriesView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        zelkGuard([&] { startTracking(*event); });
    else
        event->ignore();
}

/// With a key held the picture is dragged, once the pointer has moved far enough to mean it; that may be
/// beyond the view's edge. Without one, leaving the view ends the tracking.
void ZELKLWCEntriesView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_isTracking)
        return;
    zelkGuard([&] {
        m_isTracking = m_dragOrigin || rect().contains(event->position().toPoint());
        const QPointF way = m_dragOrigin ? event->position() - *m_dragOrigin : QPointF();
        if (way.manhattanLength() >= QApplication::startDragDistance())
            dragImage();
        else if (m_isTracking && !m_dragOrigin)
            selectAt(event->position());
    });
}

void ZELKLWCEntriesView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !std::exchange(m_isTracking, false))
        return;
    const bool hasKey = std::exchange(m_dragOrigin, std::nullopt).has_value();
    if (!hasKey)
        zelkGuard([&] { selectAt(event->position()); });
}

/// Tracking ends here: where the button is let go the chart shows other times already. The third press of
/// three comes as a single one: the range is that one day by then, which a third time would not change.
void ZELKLWCEntriesView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    zelkGuard([&] {
        startTracking(*event);
        m_isTracking = m_dragOrigin.has_value();
        narrowToSelectedDay();
    });
}

void ZELKLWCEntriesView::narrowToSelectedDay()
{
    const std::optional<ZELKDate> day = selection();
    if (!day || !m_dateRange)
        return;
    m_dateRange->setStartingDay(day);
    m_dateRange->setEndingDay(day);
}

void ZELKLWCEntriesView::dragImage()
{
    m_isTracking = false;
    const QPointF grip = std::exchange(m_dragOrigin, std::nullopt).value_or(QPointF());
    const QImage image = imageValue();
    auto pasteboard = std::make_unique<QMimeData>();
    pasteboard->setData(QLatin1String(tiffType), ZELKGraphImage::TIFFRepresentation(image));
    drag(std::move(pasteboard), image, grip);
}

/// The picture that goes along with the pointer is small, so that one sees where it will fall. The pointer
/// holds it where it was grabbed.
void ZELKLWCEntriesView::drag(std::unique_ptr<QMimeData> pasteboard, const QImage &image, QPointF grip)
{
    constexpr int widest = 320;
    const int across = qMin(image.width(), qRound(widest * image.devicePixelRatio()));
    auto *drag = new QDrag(this); // deletes itself
    drag->setMimeData(pasteboard.release());
    drag->setPixmap(QPixmap::fromImage(image.scaledToWidth(across, Qt::SmoothTransformation)));
    drag->setHotSpot((grip * across / qMax(1, image.width())).toPoint());
    drag->exec(Qt::CopyAction);
}

// MARK: keys

void ZELKLWCEntriesView::keyPressEvent(QKeyEvent *event)
{
    bool isTaken = false;
    zelkGuard([&] {
        if ((event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
            return;
        isTaken = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (!isTaken)
            isTaken = moveSelection(event->key());
        else if (isSelectionShown())
            narrowToSelectedDay();
    });
    if (!isTaken)
        QWidget::keyPressEvent(event);
}

/// A selection that the range was moved away from is none.
bool ZELKLWCEntriesView::isSelectionShown() const
{
    if (!selection() || !m_dateRange || !m_dateRange->absoluteDuration())
        return false;
    const ZELKLWCAbsoluteDuration &period = *m_dateRange->absoluteDuration();
    return period.startDate() <= *selection() && *selection() <= period.endDate().addingTimeInterval(moment);
}

ZELKDateNeighbours ZELKLWCEntriesView::visibleNeighbours(ZELKDate date) const
{
    return {date, int(m_log->countOfVisibleEntries()), ZELKDateNeighbours::Order::None,
            [this](int index) { return m_log->objectInVisibleEntriesAtIndex(std::uint64_t(index))->date(); }};
}

/// A step from the entry that the selection stands for; without one the nearest end is the first step.
std::optional<ZELKDate> ZELKLWCEntriesView::dateForKey(int key) const
{
    const bool isSelected = isSelectionShown();
    const auto nearest = [this](ZELKDate end) {
        const auto entry = m_listedEntries(end).nearest();
        return entry ? std::optional(entry->date) : std::nullopt;
    };
    if (key == Qt::Key_Home || (key == Qt::Key_Right && !isSelected))
        return nearest(ZELKDate::distantPast());
    if (key == Qt::Key_End || (key == Qt::Key_Left && !isSelected))
        return nearest(ZELKDate::distantFuture());
    const ZELKDateNeighbours around = m_listedEntries(*selection());
    return key == Qt::Key_Right ? around.next() : around.previous();
}

bool ZELKLWCEntriesView::moveSelection(int key)
{
    if (key != Qt::Key_Left && key != Qt::Key_Right && key != Qt::Key_Home && key != Qt::Key_End)
        return false;
    if (!m_log || !m_dateRange || !m_dateRange->absoluteDuration())
        return true;
    if (const std::optional<ZELKDate> date = dateForKey(key)) {
        m_cell.setSelection(date->addingTimeInterval(moment));
        Q_EMIT selectionDidChange();
    }
    return true;
}
