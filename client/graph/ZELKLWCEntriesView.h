#pragma once

#include "ZELKDateNeighbours.h"
#include "ZELKLWCEntriesCell.h"
#include "ZELKNotificationQueue.h"

#include <QTimer>
#include <QVariant>
#include <QWidget>

#include <functional>
#include <memory>

class QHelpEvent;
class QMimeData;

/// The timeline graph in a window. Pointing at the chart selects a date and says so, also while the pointer
/// is dragged; a double click narrows the range to the day. With Alt or Ctrl held the graph is dragged out
/// as a picture. Left and Right go from entry to entry, Home and End to the first and the last, Return shows
/// the selected day alone.
///
/// Blocks answer with tool tips, and assistive programs are told what the range shows.
class ZELKLWCEntriesView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QVariant selection READ selectionValue NOTIFY selectionDidChange)
    Q_PROPERTY(bool titled READ isTitled WRITE setTitled)
    Q_PROPERTY(bool bordered READ isBordered WRITE setBordered)

public:
    static constexpr char tiffType[] = "image/tiff"; ///< of what a drag carries

    explicit ZELKLWCEntriesView(QWidget *parent = nullptr);

    /// Not owned, to outlive the view. Connect both before awakeFromNib().
    void setLog(ZELKLWCLog *log) { m_log = log; }
    void setDateRange(ZELKLWCDateRangeController *dateRange) { m_dateRange = dateRange; }
    /// What keys go through, and dates chosen here stand for: the rows of a list that follows the selection,
    /// asked for what a date lies between; unset before that list ends. The log's visible entries, unless it
    /// is set.
    using ListedEntries = std::function<ZELKDateNeighbours(ZELKDate date)>;
    void setListedEntries(ListedEntries entries) { m_listedEntries = std::move(entries); }
    /// From here on log and range are shown and followed.
    void awakeFromNib();

    bool isTitled() const { return m_cell.isTitled(); }
    void setTitled(bool titled);
    bool isBordered() const { return m_cell.isBordered(); }
    void setBordered(bool bordered);
    /// With more visible entries than these the picture is stretched as long as the size changes.
    void setMostEntriesWhileResizing(std::uint64_t count) { m_mostEntriesWhileResizing = count; }
    const ZELKAttributedString &labelTopLeft() const { return m_cell.labelTopLeft(); }
    void setLabelTopLeft(const ZELKAttributedString &label);
    const ZELKAttributedString &labelBanner() const { return m_cell.labelBanner(); }
    void setLabelBanner(const ZELKAttributedString &label);

    /// The date last chosen. It is not drawn.
    std::optional<ZELKDate> selection() const { return m_cell.selection(); }
    void setSelection(std::optional<ZELKDate> selection);
    /// The same as a ZELKDate, for those who know no more of the view than that; invalid without one.
    QVariant selectionValue() const;

    /// The graph as it stands here, in the pixels of this screen; without the sign of the focus.
    QImage imageValue() const;
    /// In points, of one pixel each.
    QImage imageValueWithWidth(float width, float height) const;
    QByteArray PNGRepresentation() const;
    /// The labels, and what the range shows in words. Made when it is first asked for after a change.
    QString description() const;

    const ZELKLWCEntriesCell &cell() const { return m_cell; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user has chosen a date, perhaps the same again.
    void selectionDidChange();

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    /// Carries the picture away, as a copy; returns when it was dropped. `grip` is where it was grabbed.
    virtual void drag(std::unique_ptr<QMimeData> pasteboard, const QImage &image, QPointF grip);

private:
    void dataDidChange();
    void redisplay();
    QPointF unflipped(QPointF position) const { return {position.x(), height() - position.y()}; }
    void startTracking(const QMouseEvent &event);
    void selectAt(QPointF position);
    void dragImage();
    void narrowToSelectedDay();
    bool isSelectionShown() const;
    ZELKDateNeighbours visibleNeighbours(ZELKDate date) const;
    std::optional<ZELKDate> dateForKey(int key) const;
    bool moveSelection(int key);
    void showToolTip(const QHelpEvent &event);

    ZELKLWCLog *m_log = nullptr;
    ZELKLWCDateRangeController *m_dateRange = nullptr;
    ZELKLWCEntriesCell m_cell;
    ZELKNotificationQueue m_queue;
    ListedEntries m_listedEntries;
    mutable std::optional<QString> m_description;
    QTimer m_resizing; // runs as long as the size changes
    std::uint64_t m_mostEntriesWhileResizing = 50'000;
    bool m_isTracking = false;
    std::optional<QPointF> m_dragOrigin; // while a drag may begin, with a key held
};
