#include "ZELKDisplayListPainter.h"

#include "ZELKBlockPainter.h"
#include "ZELKCurvePainter.h"
#include "ZELKGraphColours.h"
#include "ZELKLWCEntriesViewDisplayList.h"

#include <vector>

using DisplayList = ZELKLWCEntriesViewDisplayList;

ZELKDisplayListPainter::ZELKDisplayListPainter(QImage &image, const ZELKPixelSpace &space,
                                               const ZELKChartScale &scale)
    : m_image(image)
    , m_space(space)
    , m_chart(scale.chartRect)
    , m_axis(scale.xAxisLineWidth)
{
}

void ZELKDisplayListPainter::paint(const DisplayList &list)
{
    paintBlocks(list);
    paintCurves(list);
}

void ZELKDisplayListPainter::paintBlocks(const DisplayList &list)
{
    ZELKBlockPainter painter(m_image, m_space);
    for (const QString &state : list.stateOrder()) {
        const std::optional<QColor> colour = ZELKGraphColours::stateColour(state);
        if (!colour)
            continue;
        const std::vector<ZELKBlockRange> ranges = list.rangesForState(state);
        const bool isRounded = list.selectorForState(state) == DisplayList::Selector::roundedPathForState;
        painter.paint({ranges, m_chart.y() + m_axis, m_chart.y() + m_chart.height(), isRounded},
                      ZELKStateGradient::withBaseColour(*colour));
    }
}

void ZELKDisplayListPainter::paintCurves(const DisplayList &list)
{
    std::vector<ZELKCurve> curves;
    for (const auto &battery : list.batteries().batteries())
        for (const ZELKLWCEntriesViewBatterySegment &segment : battery.segments)
            if (const std::optional<QColor> colour = ZELKGraphColours::batteryColour(segment.state()))
                curves.push_back({segment.points(), *colour});
    ZELKCurvePainter(m_image, m_space, m_chart.y()).paint(curves);
}
