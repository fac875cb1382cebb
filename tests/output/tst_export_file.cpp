// How an exported file comes to its place, and what is left where it does not.
#include "Files.h"
#include "LargestFile.h"
#include "Rows.h"
#include "ZELKBytesSource.h"
#include "ZELKFileExport.h"

#include <QDir>
#include <QTemporaryDir>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using State = ZELKFileExport::State;

QByteArray bytes(qsizetype size)
{
    return QByteArray(size, 'n');
}

ZELKFileExport exportOf(const QByteArray &bytes, const QString &path)
{
    return {std::make_unique<ZELKBytesSource>(bytes), std::make_unique<ZELKExportFile>(path)};
}

void produce(ZELKFileExport &work)
{
    while (work.state() == State::Producing)
        work.advance(0);
}

State carryOut(ZELKFileExport &work)
{
    while (work.advance(0) < State::Done)
        continue;
    return work.state();
}

mode_t modeOf(const QString &path)
{
    return mode_t(std::filesystem::status(path.toStdString()).permissions());
}

constexpr qsizetype megabyte = qsizetype(1) << 20;

} // namespace

class ExportFileTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    void giveOtherName() const
    {
        std::filesystem::create_hard_link(path("old").toStdString(), path("other name").toStdString());
    }

private Q_SLOTS:
    void cleanup()
    {
        for (const QString &name : names())
            QFile::remove(m_folder.filePath(name));
    }

    /// Nobody sees a part of it; cancelled, it never was.
    void newFile()
    {
        for (const bool isCancelled : {true, false}) {
            ZELKFileExport work = exportOf(bytes(10 * megabyte), path("new"));
            while (work.state() == State::Producing) {
                QCOMPARE(names(), QStringList());
                work.advance(0);
            }
            QCOMPARE(names(), QStringList());
            QVERIFY(work.fraction() > 0.8);
            if (isCancelled)
                continue;
            QCOMPARE(carryOut(work), State::Done);
            QCOMPARE(names(), QStringList(u"new"_s));
            QCOMPARE(readFile(path("new")), bytes(10 * megabyte));
            const mode_t mask = ::umask(0);
            ::umask(mask);
            QCOMPARE(modeOf(path("new")), 0666 & ~mask);
        }
    }

    /// The file stays the one it is, with its permissions and its other names, until there is all to put in.
    void oldFile_data()
    {
        const Rows<qsizetype, qsizetype> row; // sizes in bytes: before, after
        row("longer", 100, 9 * megabyte);
        row("shorter", 9 * megabyte, 100);
    }
    void oldFile()
    {
        const auto [before, after] = Rows<qsizetype, qsizetype>::fetch();
        const QByteArray old(before, 'o');
        writeFile(path("old"), old);
        QFile::setPermissions(path("old"), QFile::Permissions(0x6040));
        giveOtherName();
        QVERIFY(QFile::link(u"old"_s, path("link")));
        {
            ZELKFileExport cancelled = exportOf(bytes(after), path("link"));
            produce(cancelled);
        }
        QCOMPARE(readFile(path("old")), old);
        {
            ZELKFileExport work = exportOf(bytes(after), path("link"));
            while (work.canBeCancelled() && work.advance(0) < State::Done)
                continue; // the rest is done when it goes
            QCOMPARE(work.canBeCancelled(), work.state() == State::Done);
        }
        QCOMPARE(readFile(path("other name")), bytes(after));
        QCOMPARE(modeOf(path("old")), 0640u);
        QCOMPARE(names(), QStringList({u"link"_s, u"old"_s, u"other name"_s}));
    }

    /// Somebody else makes a file of that name meanwhile; or the name is a link that leads nowhere yet.
    void fileThatComesMeanwhile()
    {
        QVERIFY(QFile::link(u"target"_s, path("link")));
        ZELKFileExport throughLink = exportOf("new", path("link"));
        QCOMPARE(carryOut(throughLink), State::Done);
        QCOMPARE(readFile(path("target")), QByteArray("new"));
        ZELKFileExport work = exportOf("new", path("file"));
        work.advance(0);
        writeFile(path("file"), "old and longer");
        QCOMPARE(carryOut(work), State::Done);
        QCOMPARE(readFile(path("file")), QByteArray("new"));
    }

    /// A pipe is waited for, while nobody reads it and while it is full; meanwhile all can be cancelled.
    void pipe()
    {
        const QByteArray name = QFile::encodeName(path("pipe"));
        QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        ZELKFileExport work = exportOf(bytes(megabyte), path("pipe"));
        produce(work);
        QCOMPARE(work.advance(0), State::Placing);
        QVERIFY(!work.isPartlyGone());
        const int reader = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        for (double before = -1.0; before < work.fraction();) {
            before = work.fraction();
            QCOMPARE(work.advance(0), State::Placing);
        }
        QVERIFY(work.canBeCancelled() && work.isPartlyGone());
        QByteArray read;
        QByteArray piece(megabyte, '\0');
        for (qint64 size = 1; size > 0 || work.state() == State::Placing; work.advance(0)) {
            size = ::read(reader, piece.data(), std::size_t(piece.size()));
            read += piece.first(std::max(size, qint64(0)));
        }
        ::close(reader);
        QCOMPARE(work.state(), State::Done);
        QCOMPARE(read, bytes(megabyte));
    }

    /// Nobody reads standard output any further; Ctrl+C can come while it is waited for.
    void signalWhileAPipeIsFull()
    {
        std::array<int, 2> ends{};
        QCOMPARE(::pipe2(ends.data(), O_CLOEXEC), 0);
        ZELKFileExport work(std::make_unique<ZELKBytesSource>(bytes(megabyte)),
                            std::make_unique<ZELKExportFile>(ends[1], u"-"_s));
        produce(work);
        for (double before = -1.0; before < work.fraction(); work.advance(0))
            before = work.fraction();
        std::signal(SIGALRM, [](int) {});
        const itimerval soon{{}, {0, 5000}};
        ::setitimer(ITIMER_REAL, &soon, nullptr);
        QCOMPARE(work.advance(0), State::Placing);
        std::signal(SIGALRM, SIG_DFL);
        QVERIFY(work.canBeCancelled() && work.isPartlyGone());
        ::close(ends[0]);
        ::close(ends[1]);
    }

    void failures()
    {
        for (const auto &[path, error] :
             {std::pair("/tmp", EISDIR), std::pair("/nowhere/at/all", ENOENT),
              std::pair("/dev/null/x", ENOTDIR), std::pair("/dev/full", ENOSPC)}) {
            ZELKFileExport work = exportOf("new", QString::fromLatin1(path));
            QCOMPARE(carryOut(work), State::Failed);
            QCOMPARE(work.error(), QString::fromLocal8Bit(std::strerror(error)));
        }
    }

    /// The disk is full after some bytes: while the export is produced, while room is made for it in the old
    /// file, and, where nothing else helps any more, while that is written over.
    void fullDisk()
    {
        const QByteArray old(3 * megabyte, 'o');
        writeFile(path("old"), old);
        for (const char *name : {"old", "new"}) {
            const LargestFile limit(7 * megabyte);
            ZELKFileExport work = exportOf(bytes(10 * megabyte), path(name));
            QCOMPARE(carryOut(work), State::Failed);
            QCOMPARE(work.error(), QString::fromLocal8Bit(std::strerror(EFBIG)));
        }
        QCOMPARE(readFile(path("old")), old);
        QCOMPARE(names(), QStringList(u"old"_s));

        ZELKFileExport inPlace = exportOf(bytes(10 * megabyte), path("old"));
        produce(inPlace);
        {
            const LargestFile limit(7 * megabyte);
            QCOMPARE(carryOut(inPlace), State::Failed);
        }
        QCOMPARE(readFile(path("old")), old);

        giveOtherName();
        ZELKFileExport half = exportOf(bytes(10 * megabyte), path("old"));
        produce(half);
        half.advance(0);
        {
            const LargestFile limit(6 * megabyte);
            QCOMPARE(carryOut(half), State::Failed);
        }
        QCOMPARE(names(), QStringList(u"other name"_s));
        QCOMPARE(readFile(path("other name")), QByteArray());
    }
};

QTEST_GUILESS_MAIN(ExportFileTest)
#include "tst_export_file.moc"
