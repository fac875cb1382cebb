#include "ZELKSearchControls.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKSearchField.h"

#include <QAction>
#include <QLabel>
#include <QMainWindow>

namespace {

QString className()
{
    return QStringLiteral("ZELKLWCMainWindowController");
}

QString text(const char *topic)
{
    return ZELKInterfaceLoader::text(className(), ZELKFormat("%@.%s", {className(), topic}));
}

QString number(std::uint64_t value)
{
    return ZELKEnvironment::current().locale.toString(qulonglong(value));
}

template <typename Type>
Type *outlet(const QMainWindow &window, const char *name)
{
    return ZELKInterfaceLoader::outlet<Type>(window, className(), name);
}

} // namespace

ZELKSearchControls::ZELKSearchControls(QMainWindow &window, ZELKLWCLogTableController &table,
                                       ZELKLWCLogTableView &view, const ZELKLWCLog &log)
    : QObject(&window)
    , m_table(table)
    , m_view(view)
    , m_log(log)
    , m_filterField(outlet<ZELKSearchField>(window, "filterField"))
    , m_matchLabel(outlet<QLabel>(window, "matchLabel"))
    , m_find(outlet<QAction>(window, "actionFind"))
    , m_clear(outlet<QAction>(window, "actionClearSearch"))
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
    const QString passing = number(std::uint64_t(m_table.model().rowCount()));
    const std::uint64_t all = m_log.countOfVisibleEntries();
    m_matchLabel->setText(ZELKFormat(text(all == 1 ? "search.ofOne" : "search.of"), {passing, number(all)}));
}
