#pragma once

#include "ZELKAttributedString.h"
#include "ZELKAxisTicks.h"
#include "ZELKChartScale.h"
#include "ZELKGraphLayout.h"
#include "ZELKLWCEntriesViewDisplayList.h"
#include "ZELKPixelSpace.h"

#include <QImage>

class QPainter;
class ZELKLWCDateRangeController;
class ZELKLWCLog;

/// What a timeline graph shows. Nothing of it is owned; without a log or a range there are only paper and
/// labels.
struct ZELKGraphSubject
{
    const ZELKLWCLog *log = nullptr;
    const ZELKLWCDateRangeController *dateRange = nullptr;
    bool isTitled = true;
    bool isBordered = true;
    ZELKAttributedString labelTopLeft;
    ZELKAttributedString labelBanner;
};

/// One full drawing of a timeline graph, from the log to the image, and what was found out on the way: where
/// times stand, and which block is where. Needs a window system, for its fonts.
///
/// Distances are points of an unflipped view whose origin is the drawing's lower left corner.
class ZELKGraphDrawing
{
public:
    static constexpr double coarsest = 0.125; ///< of a pixel: what may be merged without being seen

    ZELKGraphDrawing() = default;
    /// `size` in points, of which each becomes `scaleFactor` pixels. Without area the image is null.
    ZELKGraphDrawing(const ZELKGraphSubject &subject, QSizeF size, double scaleFactor);

    QSizeF size() const { return m_size; }
    double scaleFactor() const { return m_space.scale; }
    /// Opaque; knows its scale factor.
    const QImage &image() const { return m_image; }
    const ZELKGraphLayout &layout() const { return m_layout; }
    const ZELKAxisTicks &ticks() const { return m_ticks; }
    const ZELKChartScale &chartScale() const { return m_chartScale; }
    const ZELKLWCEntriesViewDisplayList &displayList() const { return m_displayList; }

private:
    void measure(const ZELKGraphSubject &subject);
    void drawAxisWithFrame(QPainter &painter, const ZELKGraphSubject &subject);
    void drawMarkers(QPainter &painter);
    void drawEntries(const ZELKGraphSubject &subject);
    void drawLabelsWithFrame(QPainter &painter, const ZELKGraphSubject &subject);

    QSizeF m_size;
    ZELKPixelSpace m_space;
    QImage m_image;
    QString m_title;
    ZELKGraphLayout m_layout;
    ZELKChartScale m_chartScale;
    ZELKAxisTicks m_ticks;
    ZELKLWCEntriesViewDisplayList m_displayList;
};
