#include "ZELKJournalReading.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKJournalReader.h"

#include <QDirIterator>

#include <chrono>
#include <utility>

namespace {

constexpr qint64 longestLine = 200;

double secondsOf(ZELKDate date)
{
    return date.timeIntervalSinceReferenceDate() + ZELKDate::secondsFrom1970;
}

QStringList filesIn(const QString &folder)
{
    QStringList found;
    QDirIterator files(folder, {QStringLiteral("*.journal"), QStringLiteral("*.journal~")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!files.fileName().startsWith(QLatin1String("user-")))
            found.append(path);
    }
    found.sort();
    return found;
}

} // namespace

ZELKJournalReading::ZELKJournalReading(const QString &program, QObject *parent)
    : QObject(parent)
    , m_program(program)
{
    m_reader.setStandardInputFile(QProcess::nullDevice());
    m_reader.setStandardErrorFile(QProcess::nullDevice());
    m_limit.setSingleShot(true);
    m_limit.setInterval(std::chrono::seconds(mostSecondsAFile));
    connect(&m_limit, &QTimer::timeout, this, [this] {
        zelkGuard([&] {
            m_fault = QStringLiteral("reading it takes too long");
            m_reader.kill();
        });
    });
    connect(&m_reader, &QProcess::readyReadStandardOutput, this, [this] { zelkGuard([&] { takeLines(); }); });
    connect(&m_reader, &QProcess::finished, this,
            [this](int, QProcess::ExitStatus status) { zelkGuard([&] { fileFinished(status); }); });
    connect(&m_reader, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            zelkGuard([&] { failedToStart(); });
    });
}

ZELKJournalReading::~ZELKJournalReading()
{
    stop();
}

QStringList ZELKJournalReading::files(const QStringList &paths)
{
    QStringList found;
    for (const QString &path : paths)
        found += QFileInfo(path).isDir() && QFileInfo(path).isReadable() ? filesIn(path) : QStringList{path};
    found.removeDuplicates();
    return found;
}

void ZELKJournalReading::start(const QStringList &files, std::optional<ZELKDate> since)
{
    m_files.clear();
    m_marks.clear();
    m_options = QStringList(QString::fromLatin1(ZELKJournalReader::option));
    if (since)
        m_options.append(QLatin1String(ZELKJournalReader::sinceOption) +
                         QString::number(qint64(secondsOf(*since) * 1e6)));
    QStringList forbidden;
    for (const QString &path : files) {
        const QFileInfo file(path);
        if (file.exists() && !file.isReadable())
            forbidden.append(path);
        else if (!since || !file.exists() || file.lastModified() >= since->toDateTime(QTimeZone::utc()))
            m_files.append(path);
    }
    // Rights are given for all files together; a single one that has others is not waited for.
    m_mayRead = forbidden.isEmpty() || forbidden.size() < files.size();
    if (!forbidden.isEmpty())
        ZELKConsole::log(ZELKFormat("%lu files of the journal may not be read by this user, %@ the first.",
                                    {forbidden.size(), forbidden.constFirst()}));
    readNext();
}

void ZELKJournalReading::stop()
{
    m_files.clear();
    m_limit.stop();
    const QSignalBlocker blocker(m_reader);
    m_reader.kill();
    m_reader.waitForFinished();
}

void ZELKJournalReading::readNext()
{
    if (m_files.isEmpty()) {
        finish(m_mayRead);
        return;
    }
    m_file = m_files.takeFirst();
    m_fault.clear();
    m_limit.start();
    m_reader.start(m_program, m_options + QStringList(m_file), QIODevice::ReadOnly);
}

void ZELKJournalReading::takeLines()
{
    while (m_reader.canReadLine())
        take(m_reader.readLine(longestLine));
}

void ZELKJournalReading::take(const QByteArray &line)
{
    constexpr char fault[] = "fault ";
    if (line.startsWith(fault))
        m_fault = QString::fromLocal8Bit(line.mid(sizeof fault - 1).trimmed());
    else if (m_marks.size() >= mostMarks)
        m_fault = QStringLiteral("it tells of too many sleeps");
    else if (const auto mark = ZELKSleepMark::fromLine(line))
        m_marks.push_back(*mark);
}

void ZELKJournalReading::fileFinished(QProcess::ExitStatus status)
{
    m_limit.stop();
    takeLines();
    if (status != QProcess::NormalExit && m_fault.isEmpty())
        m_fault = QStringLiteral("its reader did not survive it");
    if (!m_fault.isEmpty())
        complain(m_fault);
    readNext();
}

void ZELKJournalReading::failedToStart()
{
    m_limit.stop();
    m_files.clear();
    complain(m_reader.errorString());
    finish(false);
}

void ZELKJournalReading::complain(const QString &reason) const
{
    ZELKConsole::log(ZELKFormat("The journal at %@ can not be read to its end: %@.", {m_file, reason}));
}

void ZELKJournalReading::finish(bool complete)
{
    Q_EMIT finished(std::exchange(m_marks, {}), complete);
}
