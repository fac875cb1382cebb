#include "ZELKExportCommand.h"

#include "ZELKApplicationWiring.h"
#include "ZELKCommandLineText.h"
#include "ZELKFileExport.h"
#include "ZELKFormat.h"
#include "ZELKGraphImage.h"
#include "ZELKLWCEntriesView.h"

#include <QFileInfo>

#include <unistd.h>

namespace {

QString badSide(const char *option, const QString &word)
{
    return ZELKFormat(ZELKCommandLineText("--%@ needs a number from %d to %d, not \"%@\"."),
                      {option, ZELKGraphImage::smallestSide, ZELKGraphImage::largestSide, word});
}

bool takeSide(const std::optional<QString> &word, int &side)
{
    if (!word)
        return true;
    bool isNumber = false;
    side = word->toInt(&isNumber);
    return isNumber && side >= ZELKGraphImage::smallestSide && side <= ZELKGraphImage::largestSide;
}

} // namespace

// MARK: the request

bool ZELKExportRequest::isPicture() const
{
    const auto format = ZELKExportFormat::withTag(tag);
    return format && format->isPicture();
}

QString ZELKExportRequest::take(const Words &words)
{
    if (!words.output)
        return ZELKCommandLineText("export needs --output FILE, or --output - for standard output.");
    output = *words.output;
    const auto format = ZELKExportFormat::withSuffix(words.format.value_or(QFileInfo(output).suffix()));
    if (!format && words.format)
        return ZELKFormat(ZELKCommandLineText("There is no format \"%@\"."), {*words.format});
    if (!format)
        return ZELKCommandLineText("export needs --format txt, rtf, plist, doc, tiff or png.");
    tag = format->tag;
    if (!isPicture() && (words.width || words.height || words.hasRange))
        return ZELKCommandLineText(
            "--width, --height and a range are for pictures; of the log, all is exported.");
    if (!takeSide(words.width, width))
        return badSide("width", *words.width);
    if (!takeSide(words.height, height))
        return badSide("height", *words.height);
    return {};
}

// MARK: the command

ZELKExportCommand::ZELKExportCommand(ZELKApplicationWiring &wiring, const Complaint &complain)
    : ZELKOutputCommand(wiring, complain)
{
}

bool ZELKExportCommand::run(const ZELKExportRequest &request)
{
    if (wiring().log().count() == 0) {
        complain(ZELKCommandLineText("There is nothing to export yet."));
        return false;
    }
    const bool isOutput = request.output == QLatin1String("-");
    if (!isOutput && !mayWriteTo(request.output))
        return false;
    auto source =
        ZELKExportFormat::withTag(request.tag)->source(wiring().log(), [&] { return picture(request); });
    if (!source) {
        complain(ZELKCommandLineText("There is not enough memory for a picture of that size."));
        return false;
    }
    auto file = isOutput ? std::make_unique<ZELKExportFile>(STDOUT_FILENO, request.output)
                         : std::make_unique<ZELKExportFile>(request.output);
    ZELKFileExport work(std::move(source), std::move(file));
    return carryOut(work, request.output);
}

QImage ZELKExportCommand::picture(const ZELKExportRequest &request) const
{
    ZELKLWCEntriesView view;
    view.setLog(&wiring().log());
    view.setDateRange(&wiring().dateRange());
    view.awakeFromNib();
    return view.imageValueWithWidth(float(request.width), float(request.height));
}
