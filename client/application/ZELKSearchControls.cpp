#include "ZELKSearchControls.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKSearchField.h"

#include <QAction>
#include <QLabel>
#include <QMainWindow>

ZELKSearchControls::ZELKSearchControls(QMainWindow &window, ZELKLWCLogTableController &table,
                                       ZELKLWCLogTableView &view, const ZELKLWCLog &log)
    : QObject(&window)
    , m_table(table)
    , m_view(view)
    , m_log(log)
    , m_filterField(ZELKMainWindowInterface::outlet<ZELKSearchField>(window, "filterField"))
    , m_matchLabel(ZELKMainWindowInterface::outlet<QLabel>(window, "matchLabel"))
    , m_find(ZELKMainWindowInterface::outlet<QAction>(window, "actionFind"))
    , m_clear(ZELKMainWindowInterface::outlet<QAction>(window, "actionClearSearch"))
{
    follow();
    update();
}

void ZELKSearchControls::follow()
{
    connect(m_find, &QAction::triggered, m_filterField, [this] {
        m_filterField->setFocus(Qt::ShortcutFocusReason);
        m_filterField->selectAll();
    });
    connect(m_clear, &QAction::triggered, this, [this] { zelkGuard([this] { m_table.cancelFilter(); }); });
    connect(m_filterField, &ZELKSearchField::finished, &m_view, [this] { m_view.setFocus(); });
    const auto changed = [this] { zelkGuard([this] { update(); }); };
    const ZELKLWCLogTableModel &model = m_table.model();
    connect(m_filterField, &QLineEdit::textChanged, this, changed);
    connect(&model, &ZELKLWCLogTableModel::didRearrange, this, changed);
    // Also where none of the entries that come or go passes.
    connect(&m_log, &ZELKLWCLog::visibleEntriesDidChange, this, changed);
}

void ZELKSearchControls::update()
{
    m_clear->setEnabled(m_table.validateMenuItem(ZELKLWCLogTableController::MenuItem::CancelFilter));
    m_matchLabel->setVisible(m_clear->isEnabled());
    const QString passing = ZELKMainWindowInterface::number(std::uint64_t(m_table.model().rowCount()));
    const std::uint64_t all = m_log.countOfVisibleEntries();
    m_matchLabel->setText(ZELKFormat(ZELKMainWindowInterface::text(all == 1 ? "search.ofOne" : "search.of"),
                                     {passing, ZELKMainWindowInterface::number(all)}));
}
