#include "ZELKLWCEntriesCell.h"

#include <QPainter>

void ZELKLWCEntriesCell::setLog(const ZELKLWCLog *log)
{
    m_subject.log = log;
    m_dataSourceChanged = true;
}

void ZELKLWCEntriesCell::setDateRange(const ZELKLWCDateRangeController *dateRange)
{
    m_subject.dateRange = dateRange;
    m_dataSourceChanged = true;
}

void ZELKLWCEntriesCell::setTitled(bool titled)
{
    m_dataSourceChanged = m_dataSourceChanged || titled != m_subject.isTitled;
    m_subject.isTitled = titled;
}

void ZELKLWCEntriesCell::setBordered(bool bordered)
{
    m_dataSourceChanged = m_dataSourceChanged || bordered != m_subject.isBordered;
    m_subject.isBordered = bordered;
}

void ZELKLWCEntriesCell::setLabelTopLeft(const ZELKAttributedString &label)
{
    m_dataSourceChanged = m_dataSourceChanged || label != m_subject.labelTopLeft;
    m_subject.labelTopLeft = label;
}

void ZELKLWCEntriesCell::setLabelBanner(const ZELKAttributedString &label)
{
    m_dataSourceChanged = m_dataSourceChanged || label != m_subject.labelBanner;
    m_subject.labelBanner = label;
}

bool ZELKLWCEntriesCell::selectDateAtPoint(QPointF point)
{
    const std::optional<ZELKDate> date = m_drawing.chartScale().convertPointToDate(point);
    if (date)
        m_selection = date;
    return date.has_value();
}

void ZELKLWCEntriesCell::drawInteriorWithFrame(QPainter &painter, const QRectF &frame)
{
    const double scaleFactor = painter.device()->devicePixelRatioF();
    if (m_dataSourceChanged || m_drawing.size() != frame.size() || m_drawing.scaleFactor() != scaleFactor) {
        m_drawing = ZELKGraphDrawing(m_subject, frame.size(), scaleFactor);
        m_dataSourceChanged = false;
    }
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(frame.topLeft(), m_drawing.image());
    painter.restore();
}

bool ZELKLWCEntriesCell::drawStretchedWithFrame(QPainter &painter, const QRectF &frame) const
{
    if (m_dataSourceChanged || m_drawing.image().isNull() ||
        m_drawing.scaleFactor() != painter.device()->devicePixelRatioF())
        return false;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(frame, m_drawing.image());
    painter.restore();
    return true;
}

QImage ZELKLWCEntriesCell::imageValueWithWidth(float width, float height, double scaleFactor) const
{
    return ZELKGraphDrawing(m_subject, QSizeF(double(width), double(height)), scaleFactor).image();
}
