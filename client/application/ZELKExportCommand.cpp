#include "ZELKExportCommand.h"

#include "ZELKApplicationWiring.h"
#include "ZELKBytesSource.h"
#include "ZELKCommandLineText.h"
#include "ZELKFileExport.h"
#include "ZELKFormat.h"
#include "ZELKGraphImage.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLogRepresentation.h"
#include "ZELKTerminationSignals.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>

#include <cstdio>

#include <unistd.h>

namespace {

constexpr int sliceMilliseconds = 100;
constexpr int patience = 1000; // milliseconds until progress is shown

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
    : m_wiring(wiring)
    , m_complain(complain)
{
}

bool ZELKExportCommand::run(const ZELKExportRequest &request)
{
    if (m_wiring.log().count() == 0) {
        m_complain(ZELKCommandLineText("There is nothing to export yet."));
        return false;
    }
    const bool isOutput = request.output == QLatin1String("-");
    if (!isOutput && isOwnFile(request.output)) {
        m_complain(
            ZELKFormat(ZELKCommandLineText("%@ is the file that the events are kept in."), {request.output}));
        return false;
    }
    auto source = this->source(request);
    if (!source) {
        m_complain(ZELKCommandLineText("There is not enough memory for a picture of that size."));
        return false;
    }
    auto file = isOutput ? std::make_unique<ZELKExportFile>(STDOUT_FILENO, request.output)
                         : std::make_unique<ZELKExportFile>(request.output);
    ZELKFileExport work(std::move(source), std::move(file));
    return carryOut(work);
}

bool ZELKExportCommand::isOwnFile(const QString &path) const
{
    const QString own = m_wiring.store().databaseURL().toLocalFile();
    return QFileInfo::exists(path) && QFileInfo(path) == QFileInfo(own);
}

std::unique_ptr<ZELKExportSource> ZELKExportCommand::source(const ZELKExportRequest &request) const
{
    if (request.isPicture())
        return picture(request);
    return ZELKLogRepresentation::sourceOfType(
        m_wiring.log(), QString::fromLatin1(ZELKExportFormat::withTag(request.tag)->dataType));
}

std::unique_ptr<ZELKExportSource> ZELKExportCommand::picture(const ZELKExportRequest &request) const
{
    ZELKLWCEntriesView view;
    view.setLog(&m_wiring.log());
    view.setDateRange(&m_wiring.dateRange());
    view.awakeFromNib();
    const QImage image = view.imageValueWithWidth(float(request.width), float(request.height));
    const QByteArray bytes = request.tag == ZELKExportFormat::Png ? ZELKGraphImage::PNGRepresentation(image)
                                                                  : ZELKGraphImage::TIFFRepresentation(image);
    return bytes.isEmpty() ? nullptr : std::make_unique<ZELKBytesSource>(bytes);
}

/// A file that is being replaced already is replaced to the end.
bool ZELKExportCommand::carryOut(ZELKFileExport &work)
{
    using State = ZELKFileExport::State;
    const ZELKTerminationSignals termination;
    connect(&termination, &ZELKTerminationSignals::received, this, [this] { m_isCancelled = true; });
    QElapsedTimer timer;
    timer.start();
    State state = work.state();
    while (state == State::Producing || state == State::Placing) {
        state = work.advance(sliceMilliseconds);
        QCoreApplication::processEvents();
        if (m_isCancelled && work.canBeCancelled() && state < State::Done)
            break;
        if (timer.hasExpired(patience))
            showProgress(work.fraction());
    }
    if (timer.hasExpired(patience))
        hideProgress();
    if (state == State::Failed)
        m_complain(
            ZELKFormat(ZELKCommandLineText("Cannot save file: '%@': %s"), {work.path(), work.error()}));
    else if (state != State::Done)
        m_complain(ZELKFormat(ZELKCommandLineText("Cancelled; nothing was written to %@."), {work.path()}));
    return state == State::Done;
}

/// On a line that is written over.
void ZELKExportCommand::showProgress(double fraction)
{
    if (::isatty(STDERR_FILENO) == 0)
        return;
    const QString line = ZELKFormat(ZELKCommandLineText("%d%%"), {int(fraction * 100.0)});
    std::fprintf(stderr, "\r%s", line.toLocal8Bit().constData());
    std::fflush(stderr);
}

void ZELKExportCommand::hideProgress()
{
    if (::isatty(STDERR_FILENO) != 0)
        std::fputs("\r    \r", stderr);
}
