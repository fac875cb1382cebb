#include "ZELKOutputCommand.h"

#include "ZELKApplicationWiring.h"
#include "ZELKCommandLineText.h"
#include "ZELKFormat.h"
#include "ZELKOutputWork.h"
#include "ZELKTerminationSignals.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>

#include <cstdio>

#include <unistd.h>

namespace {

using State = ZELKOutputWork::State;

constexpr int sliceMilliseconds = 100;
constexpr int patience = 1000; // milliseconds until progress is shown

/// On a line that is written over.
void showProgress(double fraction)
{
    if (::isatty(STDERR_FILENO) == 0)
        return;
    const QString line = ZELKFormat(ZELKCommandLineText("%d%%"), {int(fraction * 100.0)});
    std::fprintf(stderr, "\r%s", line.toLocal8Bit().constData());
    std::fflush(stderr);
}

void hideProgress()
{
    if (::isatty(STDERR_FILENO) != 0)
        std::fputs("\r    \r", stderr);
}

/// Until it ends or may be cancelled: a file that is being replaced already is replaced to the end.
void advance(ZELKOutputWork &work)
{
    ZELKTerminationSignals termination;
    bool isCancelled = false;
    QObject::connect(&termination, &ZELKTerminationSignals::received, &termination,
                     [&isCancelled] { isCancelled = true; });
    QElapsedTimer timer;
    timer.start();
    while ((!isCancelled || !work.canBeCancelled()) && work.advance(sliceMilliseconds) < State::Done) {
        QCoreApplication::processEvents();
        if (timer.hasExpired(patience))
            showProgress(work.fraction());
    }
    if (timer.hasExpired(patience))
        hideProgress();
}

} // namespace

ZELKOutputCommand::ZELKOutputCommand(ZELKApplicationWiring &wiring, const Complaint &complain)
    : m_wiring(wiring)
    , m_complain(complain)
{
}

bool ZELKOutputCommand::mayWriteTo(const QString &path) const
{
    const QString own = m_wiring.store().databaseURL().toLocalFile();
    if (!QFileInfo::exists(path) || QFileInfo(path) != QFileInfo(own))
        return true;
    complain(ZELKFormat(ZELKCommandLineText("%@ is the file that the events are kept in."), {path}));
    return false;
}

bool ZELKOutputCommand::carryOut(ZELKOutputWork &work, const QString &path) const
{
    advance(work);
    if (work.state() == State::Failed)
        complain(ZELKFormat(ZELKCommandLineText("Cannot save file: '%@': %s"), {path, work.error()}));
    else if (work.state() != State::Done && work.isPartlyGone())
        complain(ZELKFormat(ZELKCommandLineText("Cancelled; a part was written to %@ already."), {path}));
    else if (work.state() != State::Done)
        complain(ZELKFormat(ZELKCommandLineText("Cancelled; nothing was written to %@."), {path}));
    return work.state() == State::Done;
}
