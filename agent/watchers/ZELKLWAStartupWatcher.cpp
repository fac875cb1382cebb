#include "ZELKLWAStartupWatcher.h"

#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKStartup.h"

#include <QFile>
#include <QUuid>

#include <optional>

namespace {

constexpr qint64 longestStatistics = 1 << 20;
constexpr qint64 recordsAChunk = 1000;

QByteArray beginning(const QString &path, qint64 longest)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.read(longest) : QByteArray();
}

QString bootIDIn(const QString &path)
{
    constexpr qint64 longest = 64;
    const QString text = QString::fromLatin1(beginning(path, longest)).trimmed();
    return QUuid::fromString(text).isNull() ? QString() : text;
}

std::optional<ZELKDate> kernelBootIn(const QString &path)
{
    constexpr char key[] = "btime ";
    for (const QByteArray &line : beginning(path, longestStatistics).split('\n')) {
        bool ok = false;
        const qlonglong seconds = line.startsWith(key) ? line.mid(sizeof key - 1).toLongLong(&ok) : 0;
        if (ok && seconds > 0)
            return ZELKDate::fromSecondsSince1970(double(seconds));
    }
    return std::nullopt;
}

std::optional<ZELKAccountingRecords::Record> lastRecordIn(const QString &path)
{
    std::optional<ZELKAccountingRecords::Record> last;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return last;
    const qint64 length = recordsAChunk * qint64(ZELKAccountingRecords::recordSize());
    const ZELKDate now = ZELKEnvironment::current().clock->now();
    for (QByteArray bytes = file.read(length); !bytes.isEmpty(); bytes = file.read(length)) {
        const auto read = ZELKAccountingRecords::read({bytes.constData(), std::size_t(bytes.size())}, now);
        if (!read.records.empty())
            last = read.records.back();
    }
    return last;
}

std::optional<ZELKDate> ownRecordIn(const QString &utmp)
{
    const auto record = lastRecordIn(utmp);
    if (!record || record->kind != ZELKAccountingRecords::Kind::Boot)
        return std::nullopt;
    return record->date;
}

} // namespace

ZELKLWAStartupWatcher::ZELKLWAStartupWatcher(Places places, ZELKStartupMemory &memory, ZELKLWAEventSink sink,
                                             QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_places(std::move(places))
    , m_memory(memory)
{
}

void ZELKLWAStartupWatcher::start()
{
    const QString bootID = bootIDIn(m_places.bootID);
    const auto kernelBoot = kernelBootIn(m_places.statistics);
    if (bootID.isEmpty() || !kernelBoot) {
        ZELKConsole::log(ZELKFormat("The kernel does not tell of its start at %@.",
                                    {bootID.isEmpty() ? m_places.bootID : m_places.statistics}));
        return;
    }
    std::optional<ZELKStartup> startup = m_memory.recall(bootID);
    if (!startup) {
        startup = ZELKStartup::of({*kernelBoot, ownRecordIn(m_places.utmp), lastRecordIn(m_places.wtmp)});
        m_memory.remember(bootID, *startup);
    }
    record(startup->events());
}
