#include "ZELKLogTable.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKSearchField.h"
#include "ZELKTailFollower.h"
#include "ZELKWindowState.h"

#include <QHeaderView>

#include <algorithm>

using Follower = ZELKTailFollower;
using ZELKMainWindowInterface::outlet;

ZELKLogTable::ZELKLogTable(QMainWindow &window, ZELKApplicationWiring &wiring)
    : m_view(*outlet<ZELKLWCLogTableView>(window, "table"))
    , m_dateFormatter(wiring.defaults())
    , m_controller({wiring.log(), m_view, *outlet<ZELKSearchField>(window, "filterField"), m_dateFormatter,
                    m_summaryFormatter, wiring.defaults(), m_queue})
    , m_follower(new ZELKTailFollower(m_view, m_controller.model()))
{
    m_dateFormatter.awakeFromNib();
    m_controller.restoreSortDescriptors();
    m_controller.awakeFromNib();
    m_view.horizontalHeader()->setStretchLastSection(true);
    connect(&m_controller.model(), &ZELKLWCLogTableModel::didRearrange, this,
            [this] { zelkGuard([this] { chooseNewestEnd(); }); });
    chooseNewestEnd();
    // Today has become yesterday.
    connect(&wiring.dateRange().passingMidnightTimer(), &ZELKWallClockTimer::fired, m_view.viewport(),
            qOverload<>(&QWidget::update));
}

void ZELKLogTable::chooseNewestEnd()
{
    const ZELKSortDescriptors &order = m_controller.sortDescriptors();
    if (order.isEmpty())
        m_follower->setNewestEnd(Follower::NewestEnd::Bottom);
    else if (order.first().key != ZELKEntryArrangement::dateKey)
        m_follower->setNewestEnd(Follower::NewestEnd::None);
    else
        m_follower->setNewestEnd(order.first().ascending ? Follower::NewestEnd::Bottom
                                                         : Follower::NewestEnd::Top);
}

void ZELKLogTable::fitFont(ZELKWindowState &state)
{
    m_summaryFormatter.setFontScale(m_summaryFormatter.scaleForFont(m_view.font()));
    m_controller.adjustRowHeight();
    state.fitColumns({usualDateWidth()});
}

/// Dates of one format differ little; the widest of some that have two digits everywhere, in both halves of
/// the day and all months, and of the days that may go by their names, leaves room for all.
int ZELKLogTable::usualDateWidth()
{
    constexpr double day = 86400.0;
    constexpr double late = 28.0 * day - 1.0; // 28 January 2001, 23:59:59 UTC
    std::vector<ZELKDate> dates;
    for (int month = 0; month < 12; ++month)
        for (const double halfDay : {0.0, day / 2.0})
            dates.emplace_back(late + month * 30.0 * day - halfDay);
    const ZELKDate now = ZELKEnvironment::current().clock->now();
    for (const double days : {-1.0, 0.0, 1.0})
        dates.push_back(now.addingTimeInterval(days * day));
    const QFontMetrics metrics = m_view.fontMetrics();
    int widest = metrics.horizontalAdvance(
        m_controller.model().headerData(0, Qt::Horizontal, Qt::DisplayRole).toString());
    for (const ZELKDate date : dates)
        widest = std::max(widest, metrics.horizontalAdvance(
                                      m_dateFormatter.stringForObjectValue(QVariant::fromValue(date))));
    return widest + 4 * metrics.averageCharWidth();
}
