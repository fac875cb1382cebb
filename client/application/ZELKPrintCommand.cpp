#include "ZELKPrintCommand.h"

#include "ZELKApplicationWiring.h"
#include "ZELKCommandLineText.h"
#include "ZELKFormat.h"
#include "ZELKLWCMainWindowController.h"
#include "ZELKLWCPrintController.h"
#include "ZELKPrintOperation.h"

#include <QMainWindow>
#include <QPrinter>

namespace {

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
    : ZELKOutputCommand(wiring, complain)
    , m_window(window)
{
}

bool ZELKPrintCommand::run(const ZELKPrintRequest &request)
{
    const ZELKLWCPrintController::Outlets outlets{wiring().dateRange(), m_window.table().controller(),
                                                  m_window.table().view(), *m_window.window()};
    ZELKLWCPrintController controller(outlets);
    if (!controller.validateMenuItem(ZELKLWCPrintController::MenuItem::Print)) {
        complain(ZELKCommandLineText("There is nothing to print in that range."));
        return false;
    }
    if (!mayWriteTo(request.output))
        return false;
    setUp(controller.printInfo(), request);
    ZELKPrintOperation operation(controller.makeReport(controller.printInfo()), controller.printInfo());
    return carryOut(operation, request.output);
}
