#include "ZELKFileExport.h"

#include <QElapsedTimer>

#include <cerrno>
#include <cstring>
#include <utility>

ZELKFileExport::ZELKFileExport(std::unique_ptr<ZELKExportSource> source, std::unique_ptr<ZELKExportFile> file)
    : m_source(std::move(source))
    , m_file(std::move(file))
{
}

ZELKFileExport::State ZELKFileExport::advance(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    if (m_state == State::Producing && !m_file->isOpen() && !m_file->open())
        m_state = State::Failed;
    while (m_state == State::Producing || m_state == State::Placing) {
        if (m_state == State::Producing)
            produce();
        else
            place();
        if (timer.elapsed() >= milliseconds)
            break;
    }
    return m_state;
}

void ZELKFileExport::produce()
{
    switch (m_source->writeSome(*m_file)) {
    case ZELKExportSource::Outcome::More:
        break;
    case ZELKExportSource::Outcome::Whole:
        m_state = State::Placing;
        break;
    case ZELKExportSource::Outcome::Failed:
        m_error = m_source->systemError();
        m_state = State::Failed;
        break;
    }
}

void ZELKFileExport::place()
{
    switch (m_file->place()) {
    case ZELKExportFile::Placing::More:
        break;
    case ZELKExportFile::Placing::Done:
        m_state = State::Done;
        break;
    case ZELKExportFile::Placing::Failed:
        m_state = State::Failed;
        break;
    }
}

/// Putting in place is quick beside what was before, but for slow devices.
double ZELKFileExport::fraction() const
{
    constexpr double producing = 0.9;
    if (m_state == State::Done)
        return 1.0;
    return m_source->fraction() * producing + m_file->placedFraction() * (1.0 - producing);
}

QString ZELKFileExport::error() const
{
    if (m_file->systemError() != 0)
        return m_file->systemErrorText();
    return QString::fromLocal8Bit(std::strerror(m_error != 0 ? m_error : EIO));
}
