#include "ZELKCommandLine.h"

#include "ZELKAgentCommand.h"
#include "ZELKAssertion.h"
#include "ZELKCommandLineText.h"
#include "ZELKExportCommand.h"
#include "ZELKLWCLogEntrySelection.h"
#include "ZELKLWCMainWindowController.h"
#include "ZELKLineSource.h"
#include "ZELKPrintCommand.h"
#include "ZELKRawEventImport.h"
#include "ZELKStatisticsWriter.h"
#include "ZELKSynchronisation.h"
#include "ZELKSystemErrorText.h"
#include "ZELKTextOutput.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QMainWindow>
#include <QPixmap>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

using Command = ZELKCommandLineOptions::Command;

constexpr int everythingTag = 8;
} // namespace

ZELKCommandLine::ZELKCommandLine(const ZELKApplicationSettings &settings,
                                 const ZELKCommandLineOptions &options, ZELKTextOutput &output,
                                 ZELKTextOutput &complaints)
    : m_settings(settings)
    , m_options(options)
    , m_output(output)
    , m_complaints(complaints)
{
}

int ZELKCommandLine::run()
{
    bool succeeded = false;
    const bool raisedNothing = zelkGuard([&] { succeeded = runCommand(); });
    const bool wasWritten = finishOutput();
    return raisedNothing && succeeded && wasWritten ? done : failed;
}

bool ZELKCommandLine::runCommand()
{
    switch (m_options.command) {
    case Command::List:
        return list();
    case Command::Stats:
        return stats();
    case Command::Export:
        return exportLog();
    case Command::Print:
        return print();
    case Command::Import:
        return import();
    case Command::Snapshot:
        return snapshot();
    case Command::Agent:
        return agent();
    case Command::Window:
        break;
    }
    return false;
}

void ZELKCommandLine::complain(const QString &words)
{
    m_complaints.write(QStringLiteral("lullwatch: ") + ZELKTextOutput::safe(words) + QLatin1Char('\n'));
    m_complaints.flush();
}

/// A reader that has gone away has seen what it wanted.
bool ZELKCommandLine::finishOutput()
{
    if (m_output.flush() != ZELKTextOutput::State::Failed)
        return true;
    complain(ZELKFormat(ZELKCommandLineText("The output cannot be written: %@"), {m_output.error()}));
    return false;
}

// MARK: the agent

/// A cache of one's own is only read, unless the agent was asked for.
bool ZELKCommandLine::usesAgent() const
{
    return m_settings.knowsAgent() && (m_settings.databaseFile.isEmpty() || m_options.startsAgent);
}

/// Who only reads leaves a damaged file as it is.
ZELKApplicationWiring::World ZELKCommandLine::world() const
{
    auto world = usesAgent() ? ZELKApplicationWiring::World::real(m_settings)
                             : ZELKApplicationWiring::World::withoutAgent();
    world.servesBus = false;
    world.setsDamagedAside = usesAgent();
    return world;
}

/// False when an agent that was to be started could not be, and when the log is not all that the cache has.
bool ZELKCommandLine::synchronise(ZELKApplicationWiring &wiring)
{
    const QString file = m_settings.cacheFile();
    if (!usesAgent() && !file.isEmpty() && !QFileInfo::exists(file)) {
        complain(
            ZELKFormat(ZELKCommandLineText("%@ is not there; nothing has been kept in it yet."), {file}));
        return true;
    }
    wiring.store().syncWithLocalCache();
    bool started = true;
    if (usesAgent()) {
        ZELKSynchronisation synchronisation(wiring, [this](const QString &words) { complain(words); });
        started = !m_options.startsAgent || synchronisation.startAgent();
        synchronisation.fetch();
    }
    if (wiring.store().isLogBehind())
        complain(ZELKCommandLineText("The events cannot be read to their end; these are not all."));
    return started && !wiring.store().isLogBehind();
}

// MARK: list

bool ZELKCommandLine::list()
{
    ZELKApplicationWiring wiring(m_settings, world());
    const bool isWhole = synchronise(wiring);
    const auto writer = ZELKEntryWriter::make(m_options.format, wiring.log(), m_output);
    const bool isPeriod = m_options.from || m_options.to;
    const ZELKDate from = m_options.from ? m_options.from->begin() : ZELKDate::distantPast();
    const ZELKDate to = m_options.to ? m_options.to->end() : ZELKDate::distantFuture();
    wiring.dateRange().takeSelectionTagFrom(m_options.rangeTag);
    const ZELKLWCLog &log = wiring.log();
    const ZELKVisibleRange range =
        isPeriod ? ZELKVisibleRange{0, std::uint64_t(log.count())} : log.visibleRange();
    writer->begin();
    for (std::uint64_t i = range.location; i < range.end() && m_output.state() == ZELKTextOutput::State::Good;
         ++i) {
        const ZELKLWCLogEntry &entry = *log.objectAtIndex(int(i));
        if (!isPeriod || (entry.date() >= from && entry.date() < to))
            writer->write(entry, i);
    }
    writer->end();
    return isWhole;
}

// MARK: stats

/// Of a preset range those that a window would show; else those dated in the period. Without entries there is
/// only the period.
bool ZELKCommandLine::stats()
{
    ZELKApplicationWiring wiring(m_settings, world());
    const bool isWhole = synchronise(wiring);
    const bool isPreset = !m_options.from && !m_options.to;
    const ZELKLWCAbsoluteDuration period = isPreset ? presetPeriod(wiring) : givenPeriod(wiring);
    QList<ZELKLWCLogEntry *> entries = isPreset ? wiring.log().visibleEntriesArray() : wiring.log().entry();
    if (!isPreset) {
        const ZELKDate end = period.endDate().addingTimeInterval(1.0);
        entries.removeIf([&](const ZELKLWCLogEntry *entry) {
            return entry->date() < period.startDate() || !(entry->date() < end);
        });
    }
    ZELKLWCLogEntrySelection selection;
    selection.setDuration(period);
    if (!entries.isEmpty())
        selection = ZELKLWCLogEntrySelection(entries, period);
    if (m_options.statsAsJson)
        ZELKStatisticsWriter::writeJson(selection, m_output);
    else
        ZELKStatisticsWriter::writeText(selection, m_output);
    return isWhole;
}

/// Narrowed to what is recorded; the whole preset where it lies beyond.
ZELKLWCAbsoluteDuration ZELKCommandLine::presetPeriod(ZELKApplicationWiring &wiring) const
{
    const auto preset = *wiring.dateRange().precalculatedDurations().at(std::size_t(m_options.rangeTag) - 1);
    wiring.dateRange().takeSelectionTagFrom(m_options.rangeTag);
    const ZELKLWCAbsoluteDuration period = *wiring.dateRange().absoluteDuration();
    return period.duration() < 0.0 ? preset : period;
}

/// From the first second to the last. An end that was not given is that of the records, but not beyond the
/// day of the other.
ZELKLWCAbsoluteDuration ZELKCommandLine::givenPeriod(ZELKApplicationWiring &wiring) const
{
    using Range = ZELKLWCDateRangeController;
    const Range &range = wiring.dateRange();
    ZELKDate from = m_options.from ? m_options.from->begin() : range.distantPast();
    ZELKDate to = m_options.to ? m_options.to->end().addingTimeInterval(-1.0) : range.distantFuture();
    if (!m_options.from)
        from = std::min(from, Range::floorDate(to));
    if (!m_options.to)
        to = std::max(to, Range::ceilingDate(from));
    return ZELKLWCAbsoluteDuration::absoluteDurationFromDate(from, to);
}

// MARK: export

bool ZELKCommandLine::exportLog()
{
    ZELKApplicationWiring wiring(m_settings, world());
    const bool isWhole = synchronise(wiring);
    if (m_options.exportRequest.isPicture() && !chooseRange(wiring))
        return false;
    ZELKExportCommand command(wiring, [this](const QString &words) { complain(words); });
    return command.run(m_options.exportRequest) && isWhole;
}

/// For what shows the range as the window does. False where nothing of it was recorded; a log without entries
/// is another matter.
bool ZELKCommandLine::chooseRange(ZELKApplicationWiring &wiring)
{
    ZELKLWCDateRangeController &range = wiring.dateRange();
    range.takeSelectionTagFrom(m_options.rangeTag);
    if (m_options.from || m_options.to)
        range.setAbsoluteDuration(
            std::make_shared<ZELKLWCAbsoluteDuration>(ZELKLWCAbsoluteDuration::absoluteDurationFromDate(
                m_options.from ? m_options.from->begin() : range.distantPast(),
                m_options.to ? m_options.to->end().addingTimeInterval(-1.0) : range.distantFuture())));
    if (wiring.log().count() == 0 || range.absoluteDuration()->duration() > 0.0)
        return true;
    complain(ZELKCommandLineText("Nothing was recorded in that range."));
    return false;
}

// MARK: print

/// What the window's table shows of the range.
bool ZELKCommandLine::print()
{
    ZELKApplicationWiring wiring(m_settings, world());
    ZELKLWCMainWindowController window(wiring);
    window.showWindow();
    const bool isWhole = synchronise(wiring);
    if (!chooseRange(wiring))
        return false;
    QCoreApplication::processEvents();
    ZELKPrintCommand command(wiring, window, [this](const QString &words) { complain(words); });
    return command.run(m_options.printRequest) && isWhole;
}

// MARK: import

bool ZELKCommandLine::import()
{
    if (m_options.file == QLatin1String("-"))
        return importFrom(STDIN_FILENO);
    const int descriptor = ::open(QFile::encodeName(m_options.file).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        const QString reason = ZELKSystemErrorText(errno);
        complain(ZELKFormat(ZELKCommandLineText("%@ cannot be read: %@"), {m_options.file, reason}));
        return false;
    }
    bool succeeded = false;
    zelkGuard([&] { succeeded = importFrom(descriptor); });
    ::close(descriptor);
    return succeeded;
}

bool ZELKCommandLine::importFrom(int descriptor)
{
    ZELKApplicationWiring wiring(m_settings, ZELKApplicationWiring::World::withoutAgent());
    ZELKRawEventImport import(wiring.store(), [this](std::uint64_t number, const QString &reason) {
        complain(ZELKFormat(ZELKCommandLineText("line %lu: %@"), {number, reason}));
    });
    ZELKLineSource lines(descriptor, ZELKRawEventImport::longestLine);
    const bool wasKept = import.run(lines);
    if (!wasKept)
        complain(ZELKCommandLineText("The events cannot be kept: their file cannot be written."));
    if (!lines.error().isEmpty())
        complain(ZELKFormat(ZELKCommandLineText("%@ cannot be read: %@"), {m_options.file, lines.error()}));
    m_output.write(ZELKFormat(ZELKCommandLineText("imported %lu events, %lu of them new, skipped %lu lines"),
                              {import.imported(), import.added(), import.skipped()}) +
                   QLatin1Char('\n'));
    const bool isOfUse = import.imported() > 0 || import.skipped() == 0;
    return wasKept && lines.error().isEmpty() && isOfUse;
}

// MARK: snapshot

bool ZELKCommandLine::snapshot()
{
    ZELKApplicationWiring wiring(m_settings, world());
    std::unique_ptr<ZELKLWCMainWindowController> window;
    if (!m_options.picture.isEmpty()) {
        window = std::make_unique<ZELKLWCMainWindowController>(wiring);
        window->showWindow();
    }
    const bool isWhole = synchronise(wiring);
    printLatest(wiring.log());
    return (!window || takePicture(wiring, *window)) && isWhole;
}

void ZELKCommandLine::printLatest(const ZELKLWCLog &log)
{
    const auto writer = ZELKEntryWriter::make(ZELKEntryWriter::Format::Table, log, m_output);
    writer->begin();
    for (int i = std::max(0, log.count() - m_options.count); i < log.count(); ++i)
        writer->write(*log.objectAtIndex(i), std::uint64_t(i));
    writer->end();
}

bool ZELKCommandLine::takePicture(ZELKApplicationWiring &wiring, ZELKLWCMainWindowController &window)
{
    wiring.dateRange().takeSelectionTagFrom(everythingTag);
    QCoreApplication::processEvents();
    if (!window.window()->grab().save(m_options.picture, "PNG")) {
        complain(
            ZELKFormat(ZELKCommandLineText("The picture cannot be written to %@."), {m_options.picture}));
        return false;
    }
    m_output.write(
        ZELKFormat(ZELKCommandLineText("A picture of the window stands in %@."), {m_options.picture}) +
        QLatin1Char('\n'));
    return true;
}

// MARK: agent

/// Cache and log have no part in this.
bool ZELKCommandLine::agent()
{
    ZELKAgentController controller(ZELKApplicationWiring::World::real(m_settings).ports);
    return ZELKAgentCommand(controller, m_output, [this](const QString &words) { complain(words); })
        .run(m_options.agent);
}
