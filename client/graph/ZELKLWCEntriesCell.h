#pragma once

#include "ZELKGraphDrawing.h"

#include <optional>

/// The timeline graph as a view shows it: draws it when what it shows or its size has changed, and copies the
/// picture otherwise. Log and date range are not owned and must outlive the cell. Needs a window system.
///
/// Places on the chart, and the selection, are those of the last drawing, in points of an unflipped view.
class ZELKLWCEntriesCell
{
public:
    const ZELKLWCLog *log() const { return m_subject.log; }
    void setLog(const ZELKLWCLog *log);
    const ZELKLWCDateRangeController *dateRange() const { return m_subject.dateRange; }
    void setDateRange(const ZELKLWCDateRangeController *dateRange);

    /// Whether the next drawing is a full one; to be set when entries or range have changed.
    bool dataSourceChanged() const { return m_dataSourceChanged; }
    void setDataSourceChanged(bool changed) { m_dataSourceChanged = changed; }
    bool isTitled() const { return m_subject.isTitled; }
    void setTitled(bool titled);
    bool isBordered() const { return m_subject.isBordered; }
    void setBordered(bool bordered);
    const ZELKAttributedString &labelTopLeft() const { return m_subject.labelTopLeft; }
    void setLabelTopLeft(const ZELKAttributedString &label);
    const ZELKAttributedString &labelBanner() const { return m_subject.labelBanner; }
    void setLabelBanner(const ZELKAttributedString &label);

    /// The date last pointed at. It is not drawn.
    std::optional<ZELKDate> selection() const { return m_selection; }
    void setSelection(std::optional<ZELKDate> selection) { m_selection = selection; }
    /// Selects the date at a point of the chart; false, and nothing changed, beside the chart.
    bool selectDateAtPoint(QPointF point);

    /// `frame` in the painter's coordinates, where y grows downwards. Replaces what was there.
    void drawInteriorWithFrame(QPainter &painter, const QRectF &frame);
    /// The last drawing stretched to another frame, for the moment until there is a full one. False, and
    /// nothing drawn, where it shows something else, or there is none.
    bool drawStretchedWithFrame(QPainter &painter, const QRectF &frame) const;
    /// The last drawing; empty before the first.
    const ZELKGraphDrawing &drawing() const { return m_drawing; }
    const QRectF &chartRect() const { return m_drawing.layout().chartRect; }

    /// A picture of its own, of that many points; the view's drawing stays. Limits to the size are the
    /// caller's; a picture that memory does not suffice for is null.
    QImage imageValueWithWidth(float width, float height, double scaleFactor = 1.0) const;

private:
    ZELKGraphSubject m_subject;
    ZELKGraphDrawing m_drawing;
    bool m_dataSourceChanged = true;
    std::optional<ZELKDate> m_selection;
};
