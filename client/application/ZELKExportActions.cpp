#include "ZELKExportActions.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKMessage.h"

#include <QAction>

ZELKExportActions::ZELKExportActions(QMainWindow &window, ZELKApplicationWiring &wiring)
    : QObject(&window)
    , m_controller(wiring.defaults())
    , m_export(ZELKMainWindowInterface::outlet<QAction>(window, "actionExport"))
{
    m_controller.setLog(&wiring.log());
    m_controller.setEntriesView(ZELKMainWindowInterface::outlet<ZELKLWCEntriesView>(window, "graph"));
    m_controller.setMainWindow(&window);
    connect(m_export, &QAction::triggered, this, [this] { zelkGuard([this] { m_controller.exportLog(); }); });
    connect(&m_controller, &ZELKLWCExportController::alertPresented, &window, [&window](const QString &text) {
        zelkGuard([&] { ZELKMessage::open(window, QMessageBox::Warning, text, {}); });
    });
    const auto update = [this] { zelkGuard([this] { validate(); }); };
    connect(&m_controller, &ZELKLWCExportController::menuItemsChanged, this, update);
    connect(&wiring.log(), &ZELKLWCLog::visibleEntriesDidChange, this, update);
    validate();
}

void ZELKExportActions::validate()
{
    m_export->setEnabled(m_controller.validateMenuItem(ZELKLWCExportController::MenuItem::Export));
}
