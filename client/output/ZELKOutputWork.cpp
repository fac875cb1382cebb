#include "ZELKOutputWork.h"

#include <QElapsedTimer>

#include <utility>

ZELKOutputWork::ZELKOutputWork(std::unique_ptr<ZELKExportFile> file)
    : m_file(std::move(file))
{
}

ZELKOutputWork::State ZELKOutputWork::advance(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (m_state < State::Done) {
        m_state = goOn();
        if (timer.elapsed() >= milliseconds)
            break;
    }
    return m_state;
}

ZELKOutputWork::State ZELKOutputWork::goOn()
{
    if (m_state == State::Placing)
        return place();
    if (m_file && !m_file->isOpen() && !m_file->open())
        return fail(m_file->systemErrorText());
    return produce();
}

ZELKOutputWork::State ZELKOutputWork::place()
{
    switch (m_file->place()) {
    case ZELKExportFile::Placing::More:
        return State::Placing;
    case ZELKExportFile::Placing::Done:
        return State::Done;
    case ZELKExportFile::Placing::Failed:
        break;
    }
    return fail(m_file->systemErrorText());
}

ZELKOutputWork::State ZELKOutputWork::fail(const QString &error)
{
    m_error = error.isNull() ? QLatin1String("") : error;
    return State::Failed;
}

/// Placing is quick beside producing, but for slow devices.
double ZELKOutputWork::fraction() const
{
    constexpr double producing = 0.9;
    if (m_state == State::Done)
        return 1.0;
    if (!m_file)
        return producedFraction();
    return producedFraction() * producing + m_file->placedFraction() * (1.0 - producing);
}
