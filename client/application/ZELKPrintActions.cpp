#include "ZELKPrintActions.h"

#include "ZELKAssertion.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKMessage.h"

#include <QAction>
#include <QMainWindow>

ZELKPrintActions::ZELKPrintActions(QMainWindow &window, ZELKLWCDateRangeController &dateRange,
                                   ZELKLWCLogTableController &table, ZELKLWCLogTableView &view)
    : QObject(&window)
    , m_window(window)
    , m_controller({dateRange, table, view, window})
    , m_print(connectAction("actionPrint", &ZELKLWCPrintController::print))
    , m_preview(connectAction("actionPrintPreview", &ZELKLWCPrintController::printPreview))
{
    connectAction("actionPageSetup", &ZELKLWCPrintController::pageSetup);
    const auto changed = [this] { zelkGuard([this] { validate(); }); };
    const ZELKLWCLogTableModel &model = table.model();
    connect(&model, &QAbstractItemModel::rowsInserted, this, changed);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, changed);
    connect(&model, &QAbstractItemModel::modelReset, this, changed);
    connect(&m_controller, &ZELKLWCPrintController::printed, this,
            [this](const QString &error) { zelkGuard([&] { showFailure(error); }); });
    validate();
}

QAction *ZELKPrintActions::connectAction(const char *name, void (ZELKLWCPrintController::*function)())
{
    auto *action = ZELKMainWindowInterface::outlet<QAction>(m_window, name);
    connect(action, &QAction::triggered, &m_controller,
            [this, function] { zelkGuard([&] { (m_controller.*function)(); }); });
    return action;
}

void ZELKPrintActions::validate()
{
    for (QAction *action : {m_print, m_preview})
        action->setEnabled(m_controller.validateMenuItem(ZELKLWCPrintController::MenuItem::Print));
}

void ZELKPrintActions::showFailure(const QString &error)
{
    if (!error.isNull())
        ZELKMessage::open(m_window, QMessageBox::Warning, ZELKMainWindowInterface::text("print.failed"),
                          error);
}
