#include "ZELKAgentAlertSheet.h"

#include "ZELKAgentAlertDialog.h"
#include "ZELKAssertion.h"

#include <QWidget>

#include <memory>

ZELKAgentAlertSheet::ZELKAgentAlertSheet(QWidget &window, const ZELKAgentInstallation &agent)
    : m_window(window)
    , m_agent(agent)
{
}

void ZELKAgentAlertSheet::beginSheet(const ZELKAgentAlert &alert, const EndHandler &ended)
{
    auto made = std::make_unique<ZELKAgentAlertDialog>(alert, m_agent, &m_window);
    ZELKAgentAlertDialog *dialog = made.release(); // its window's from now on, or its own when closed
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ZELKAgentAlertDialog::helpRequested, this, &ZELKAgentAlertSheet::helpRequested);
    connect(dialog, &QDialog::finished, this,
            [dialog, ended](int code) { zelkGuard([&] { ended(code, dialog->locationTag()); }); });
    dialog->open();
}
