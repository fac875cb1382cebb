#include "ZELKPrintCommand.h"

#include "ZELKApplicationWiring.h"
#include "ZELKCommandLineText.h"
#include "ZELKFormat.h"
#include "ZELKLWCMainWindowController.h"
#include "ZELKLWCPrintController.h"
#include "ZELKPrintOperation.h"
#include "ZELKTerminationSignals.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMainWindow>
#include <QPrinter>

namespace {

using State = ZELKPrintOperation::State;

constexpr int sliceMilliseconds = 100;

void setUp(QPrinter &printer, const ZELKPrintRequest &request)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(request.output);
    if (!request.paper.isEmpty())
        printer.setPageSize(
            QPageSize(request.paper == QLatin1String("A4") ? QPageSize::A4 : QPageSize::Letter));
    if (request.isLandscape)
        printer.setPageOrientation(QPageLayout::Landscape);
}

} // namespace

QString ZELKPrintRequest::complaint() const
{
    if (output.isEmpty())
        return ZELKCommandLineText("print needs --output FILE.");
    if (!paper.isEmpty() && paper != QLatin1String("A4") && paper != QLatin1String("Letter"))
        return ZELKFormat(ZELKCommandLineText("There is no paper \"%@\": A4 and Letter there are."), {paper});
    return {};
}

ZELKPrintCommand::ZELKPrintCommand(ZELKApplicationWiring &wiring, ZELKLWCMainWindowController &window,
                                   const Complaint &complain)
    : m_wiring(wiring)
    , m_window(window)
    , m_complain(complain)
{
}

bool ZELKPrintCommand::run(const ZELKPrintRequest &request)
{
    const ZELKLWCPrintController::Outlets outlets{m_wiring.dateRange(), m_window.table().controller(),
                                                  m_window.table().view(), *m_window.window()};
    ZELKLWCPrintController controller(outlets);
    if (!controller.validateMenuItem(ZELKLWCPrintController::MenuItem::Print)) {
        m_complain(ZELKCommandLineText("There is nothing to print in that range."));
        return false;
    }
    if (isOwnFile(request.output)) {
        m_complain(
            ZELKFormat(ZELKCommandLineText("%@ is the file that the events are kept in."), {request.output}));
        return false;
    }
    setUp(controller.printInfo(), request);
    ZELKPrintOperation operation(controller.makeReport(controller.printInfo()), controller.printInfo());
    const ZELKTerminationSignals termination;
    connect(&termination, &ZELKTerminationSignals::received, this, [this] { m_isCancelled = true; });
    while ((!m_isCancelled || !operation.canBeCancelled()) &&
           operation.advance(sliceMilliseconds) < State::Done)
        QCoreApplication::processEvents();
    if (operation.state() == State::Failed)
        m_complain(ZELKFormat(ZELKCommandLineText("Cannot save file: '%@': %s"),
                              {request.output, operation.error()}));
    else if (operation.state() != State::Done)
        m_complain(
            ZELKFormat(ZELKCommandLineText("Cancelled; nothing was written to %@."), {request.output}));
    return operation.state() == State::Done;
}

bool ZELKPrintCommand::isOwnFile(const QString &path) const
{
    const QString own = m_wiring.store().databaseURL().toLocalFile();
    return QFileInfo::exists(path) && QFileInfo(path) == QFileInfo(own);
}
