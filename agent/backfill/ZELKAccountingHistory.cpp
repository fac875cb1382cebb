#include "ZELKAccountingHistory.h"

#include "ZELKAccountingRecords.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QTimeZone>

#include <algorithm>
#include <zlib.h>

namespace {

constexpr std::size_t recordsAPiece = 1000;

struct GzipCloser
{
    void operator()(gzFile file) const { gzclose_r(file); }
};

/// A rotated file's place: rising numbers are older, rising days newer.
struct Rotated
{
    QString name;
    qlonglong age;
};

QRegularExpression rotatedNames(const QString &name)
{
    return QRegularExpression(QStringLiteral("^%1(?:\\.(\\d{1,9})|-(\\d{8,14}))(\\.[A-Za-z0-9]{1,4})?$")
                                  .arg(QRegularExpression::escape(name)));
}

/// Rotation and packing leave a file the time of its last record.
bool wasWritten(const QString &file, std::optional<ZELKDate> since)
{
    const QFileInfo info(file);
    return !since || (info.exists() && info.lastModified() >= since->toDateTime(QTimeZone::utc()));
}

} // namespace

struct ZELKAccountingHistory::Reading
{
    QString path;
    std::unique_ptr<gzFile_s, GzipCloser> file;
    ZELKAccountingRecords skipped;
    std::size_t records = 0;

    void complain(const QString &reason) const
    {
        ZELKConsole::log(ZELKFormat("The accounting at %@ can not be read to its end: %@.", {path, reason}));
    }
    bool readPiece(std::vector<ZELKLWAEvent> &events);
    void end();
};

/// False at the end of the file.
bool ZELKAccountingHistory::Reading::readPiece(std::vector<ZELKLWAEvent> &events)
{
    QByteArray bytes(qsizetype(recordsAPiece * ZELKAccountingRecords::recordSize()), Qt::Uninitialized);
    const int length = gzread(file.get(), bytes.data(), unsigned(bytes.size()));
    const auto read = ZELKAccountingRecords::read({bytes.constData(), std::size_t(std::max(length, 0))},
                                                  ZELKEnvironment::current().clock->now());
    for (const auto &record : read.records)
        events.push_back(record.event());
    skipped.strayBytes += read.strayBytes;
    skipped.unknownTypes += read.unknownTypes;
    skipped.absurdTimes += read.absurdTimes;
    records += recordsAPiece;
    return length == int(bytes.size()) && records < mostRecords;
}

void ZELKAccountingHistory::Reading::end()
{
    int code = Z_OK;
    const char *message = gzerror(file.get(), &code);
    if (code != Z_OK && code != Z_STREAM_END)
        complain(QString::fromLocal8Bit(message));
    else if (records >= mostRecords)
        complain(QStringLiteral("it is too long"));
    if (skipped.skippedAny())
        ZELKConsole::log(ZELKFormat("Skipped in %@: %@.", {path, skipped.skippedText()}));
}

ZELKAccountingHistory::ZELKAccountingHistory(const QString &path)
    : m_reading(std::make_unique<Reading>())
{
    m_reading->path = path;
}

ZELKAccountingHistory::~ZELKAccountingHistory() = default;
ZELKAccountingHistory::ZELKAccountingHistory(ZELKAccountingHistory &&other) noexcept = default;

QStringList ZELKAccountingHistory::files(const QString &path, std::optional<ZELKDate> since)
{
    const QDir folder = QFileInfo(path).dir();
    const QRegularExpression names = rotatedNames(QFileInfo(path).fileName());
    std::vector<Rotated> rotated;
    QStringList skipped;
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
        const QRegularExpressionMatch match = names.match(name);
        if (!match.hasMatch() || !wasWritten(folder.filePath(name), since))
            continue;
        const QString packing = match.captured(3);
        if (!packing.isEmpty() && packing != QLatin1String(".gz"))
            skipped.append(name);
        else
            rotated.push_back({name, match.captured(1).isEmpty() ? -match.captured(2).toLongLong()
                                                                 : match.captured(1).toLongLong()});
    }
    if (!skipped.isEmpty())
        ZELKConsole::log(ZELKFormat("Skipped in %@, for how they are packed: %@.",
                                    {folder.path(), skipped.join(QLatin1String(", "))}));
    std::stable_sort(rotated.begin(), rotated.end(),
                     [](const Rotated &a, const Rotated &b) { return a.age > b.age; });
    QStringList files;
    for (const Rotated &file : rotated)
        files.append(folder.filePath(file.name));
    if (wasWritten(path, since))
        files.append(path);
    return files;
}

bool ZELKAccountingHistory::readSome(std::vector<ZELKLWAEvent> &events)
{
    if (!m_reading->file) {
        const bool isFile = QFileInfo(m_reading->path).isFile();
        m_reading->file.reset(isFile ? gzopen(QFile::encodeName(m_reading->path).constData(), "rb")
                                     : nullptr);
        if (!m_reading->file) {
            m_reading->complain(QStringLiteral("it can not be opened"));
            return false;
        }
    }
    if (m_reading->readPiece(events))
        return true;
    m_reading->end();
    return false;
}
