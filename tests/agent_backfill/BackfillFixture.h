#pragma once

#include "AccountingRecord.h"
#include "ClockEnvironment.h"
#include "ConsoleLines.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKJournalReader.h"
#include "ZELKLWAEvent.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstring>
#include <memory>
#include <zlib.h>

using namespace Qt::StringLiterals;

/// When the tests take place, in seconds since 1970.
constexpr double now = 1800000000.0;

/// "SECONDS EVENT", the seconds since 1970.
inline QStringList linesOf(const std::vector<ZELKLWAEvent> &events)
{
    QStringList lines;
    for (const ZELKLWAEvent &event : events)
        lines.append(
            QString::number(event.date.timeIntervalSinceReferenceDate() + ZELKDate::secondsFrom1970, 'f', 6) +
            u' ' + event.event);
    return lines;
}

enum class Accounting { Boot, ShutDown, Login };
using Record = std::pair<Accounting, double>;

inline QByteArray accounting(const QList<Record> &records)
{
    QByteArray bytes;
    for (const auto &[kind, seconds] : records) {
        const short type = kind == Accounting::Boot    ? BOOT_TIME
                           : kind == Accounting::Login ? USER_PROCESS
                                                       : RUN_LVL;
        bytes += accountingRecord(type, type == RUN_LVL ? "shutdown" : "reboot", qint64(seconds));
    }
    return bytes;
}

inline void writePacked(const QString &path, const QByteArray &bytes)
{
    const gzFile file = gzopen(path.toLocal8Bit().constData(), "wb");
    if (gzwrite(file, bytes.constData(), unsigned(bytes.size())) != bytes.size() || gzclose(file) != Z_OK)
        qFatal("%s cannot be written", qPrintable(path));
}

/// Makes it a file that nobody has written to since then, in seconds since 1970.
inline void setModified(const QString &path, qint64 seconds)
{
    QFile file(path);
    const QDateTime time = QDateTime::fromSecsSinceEpoch(seconds);
    if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(time, QFileDevice::FileModificationTime))
        qFatal("%s cannot be dated", qPrintable(path));
}

/// A journal of the tests' data.
inline QByteArray journal(const char *name)
{
    const QByteArray path = QByteArray(ZELK_TEST_DATA "/") + name + ".journal.gz";
    const gzFile file = gzopen(path.constData(), "rb");
    QByteArray bytes(16 << 20, Qt::Uninitialized);
    bytes.truncate(gzread(file, bytes.data(), unsigned(bytes.size())));
    gzclose(file);
    return bytes;
}

/// What a test's program does when it is started to read a journal.
inline int readJournal(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 2; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return ZELKJournalReader::run(arguments);
}

/// The test's own program reads journals for it, as the agent's does.
#define BACKFILL_TEST_MAIN(Test)                                                                             \
    int main(int argc, char **argv)                                                                          \
    {                                                                                                        \
        if (argc > 1 && std::strcmp(argv[1], ZELKJournalReader::option) == 0)                                \
            return readJournal(argc, argv);                                                                  \
        const QCoreApplication application(argc, argv);                                                      \
        const ZELKEnvironmentScope scope(                                                                    \
            environmentWith(std::make_shared<ZELKFixedClock>(ZELKDate::fromSecondsSince1970(now))));         \
        Test test;                                                                                           \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
