#include "ZELKGraphDrawing.h"

#include "ZELKAxisPainter.h"
#include "ZELKDisplayListBuilder.h"
#include "ZELKDisplayListPainter.h"
#include "ZELKGraphText.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKSystemFonts.h"

#include <QPainter>

#include <cmath>

namespace {

using DisplayList = ZELKLWCEntriesViewDisplayList;

ZELKTextAttributes titleAttributes()
{
    return ZELKGraphText::attributes(ZELKSystemFonts::systemFontSize());
}

ZELKTextAttributes axisLabelAttributes()
{
    return ZELKGraphText::attributes(ZELKSystemFonts::labelFontSize());
}

ZELKTextAttributes xAxisMarkerAttributes()
{
    return ZELKGraphText::attributes(ZELKSystemFonts::smallSystemFontSize());
}

QString yAxisLabel()
{
    const QString key = QStringLiteral("Battery\n%");
    return ZELKLWCLogEntry::localizedStringForKey(key, key, QStringLiteral("General"));
}

} // namespace

ZELKGraphDrawing::ZELKGraphDrawing(const ZELKGraphSubject &subject, QSizeF size, double scaleFactor)
    : m_size(size)
    , m_space{size.height(), scaleFactor}
    , m_image(int(std::ceil(size.width() * scaleFactor)), int(std::ceil(size.height() * scaleFactor)),
              QImage::Format_RGB32)
    , m_displayList(DisplayList::displayList(coarsest / scaleFactor))
{
    if (m_image.isNull())
        return;
    m_image.setDevicePixelRatio(scaleFactor);
    m_image.fill(Qt::white);
    measure(subject);
    {
        QPainter painter(&m_image);
        painter.setRenderHint(QPainter::Antialiasing);
        drawAxisWithFrame(painter, subject);
    }
    drawEntries(subject);
    QPainter painter(&m_image);
    drawLabelsWithFrame(painter, subject);
}

void ZELKGraphDrawing::measure(const ZELKGraphSubject &subject)
{
    if (subject.dateRange && subject.dateRange->absoluteDuration())
        m_chartScale.period = *subject.dateRange->absoluteDuration();
    if (subject.isTitled && subject.dateRange && subject.dateRange->absoluteDuration())
        m_title = m_chartScale.period.periodDescription().simplified(); // days are padded
    ZELKGraphMeasures measures;
    measures.isTitled = subject.isTitled;
    measures.title = ZELKGraphText::size(m_title, titleAttributes());
    measures.yAxisLabel = ZELKGraphText::size(yAxisLabel(), axisLabelAttributes());
    measures.dateLabelHeight =
        ZELKGraphText::size(QStringLiteral("Tuesday"), xAxisMarkerAttributes()).height();
    measures.supportsBatteries = subject.log && subject.log->supportsBatteries();
    m_layout = ZELKGraphLayout::inFrame({QPointF(), m_size}, measures);
    m_chartScale.chartRect = m_layout.chartRect;
    m_chartScale.xAxisLineWidth = double(m_layout.xAxisLineWidth);
}

// MARK: around the chart

void ZELKGraphDrawing::drawAxisWithFrame(QPainter &painter, const ZELKGraphSubject &subject)
{
    ZELKAxisPainter axis(painter, m_space);
    axis.drawPaper(m_layout.frame, subject.isBordered);
    if (subject.isTitled)
        ZELKGraphText::draw(painter, m_space, m_layout.titleRect, m_title, titleAttributes());
    if (!m_layout.hasChart())
        return;
    const bool hasBatteries = !m_layout.yAxisLabelRect.isNull();
    if (hasBatteries)
        ZELKGraphText::draw(painter, m_space, m_layout.yAxisLabelRect, yAxisLabel(), axisLabelAttributes());
    axis.drawAxis(m_layout);
    if (hasBatteries)
        axis.drawGrid(m_layout);
    drawMarkers(painter);
}

void ZELKGraphDrawing::drawMarkers(QPainter &painter)
{
    const ZELKTextAttributes attributes = xAxisMarkerAttributes();
    m_ticks = ZELKAxisTicks::forPeriod(
        m_chartScale.period, m_layout, ZELKLWCEntriesViewMarkerInterval::markerIntervals(),
        [&attributes](const QString &text) { return ZELKGraphText::size(text, attributes); });
    ZELKAxisPainter axis(painter, m_space);
    for (const ZELKAxisTicks::Tick &tick : m_ticks.ticks)
        axis.drawMarker(tick, m_layout);
    for (const ZELKAxisTicks::Label &label : m_ticks.labels)
        ZELKGraphText::draw(painter, m_space, label.rect, label.text.simplified(), attributes); // padded too
}

// MARK: in the chart

void ZELKGraphDrawing::drawEntries(const ZELKGraphSubject &subject)
{
    if (!subject.log || !m_layout.hasChart())
        return;
    ZELKDisplayListBuilder(m_displayList, m_chartScale, *subject.log).prepareDisplayList();
    ZELKDisplayListPainter(m_image, m_space, m_chartScale).paint(m_displayList);
}

void ZELKGraphDrawing::drawLabelsWithFrame(QPainter &painter, const ZELKGraphSubject &subject)
{
    if (!subject.labelTopLeft.isEmpty())
        ZELKGraphText::drawTopLeft(painter, m_space, m_layout.frame, subject.labelTopLeft);
    if (!subject.labelBanner.isEmpty())
        ZELKGraphText::drawBanner(painter, m_space, m_layout.frame, subject.labelBanner);
}
