// How an exported file comes to its place, and what is left where it does not.
#include "Files.h"
#include "Rows.h"
#include "ZELKBytesSource.h"
#include "ZELKFileExport.h"

#include <QDir>
#include <QTemporaryDir>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using State = ZELKFileExport::State;

/// Files of this process cannot become larger than that while it lives.
class LargestFile
{
public:
    explicit LargestFile(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LargestFile() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    LargestFile(const LargestFile &) = delete;
    LargestFile &operator=(const LargestFile &) = delete;

private:
    rlimit m_before{};
};

QByteArray bytes(qsizetype size)
{
    return QByteArray(size, 'n');
}

ZELKFileExport exportOf(const QByteArray &bytes, const QString &path)
{
    return {std::make_unique<ZELKBytesSource>(bytes), std::make_unique<ZELKExportFile>(path)};
}

State carryOut(ZELKFileExport &work)
{
    while (work.advance(0) < State::Done)
        continue;
    return work.state();
}

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    ::stat(QFile::encodeName(path).constData(), &status);
    return status;
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
            QCOMPARE(statusOf(path("new")).st_mode & 0777, 0666 & ~mask);
        }
    }

    /// The file stays the one it is, with its permissions and its other names, until there is all to put in.
    void oldFile_data()
    {
        const Rows<int, int> row; // sizes in bytes: before, after
        row("longer", 100, int(9 * megabyte));
        row("shorter", int(9 * megabyte), 100);
        row("nothing", 100, 0);
    }
    void oldFile()
    {
        const auto [before, after] = Rows<int, int>::fetch();
        const QByteArray old(before, 'o');
        writeFile(path("old"), old);
        ::chmod(QFile::encodeName(path("old")).constData(), 0640);
        QVERIFY(::link(QFile::encodeName(path("old")).constData(),
                       QFile::encodeName(path("other name")).constData()) == 0);
        QVERIFY(QFile::link(u"old"_s, path("link")));
        const auto inode = statusOf(path("old")).st_ino;
        {
            ZELKFileExport cancelled = exportOf(bytes(after), path("link"));
            while (cancelled.state() == State::Producing)
                cancelled.advance(0);
        }
        QCOMPARE(readFile(path("old")), old);
        ZELKFileExport work = exportOf(bytes(after), path("link"));
        QCOMPARE(carryOut(work), State::Done);
        QCOMPARE(readFile(path("other name")), bytes(after));
        QCOMPARE(statusOf(path("link")).st_ino, inode);
        QCOMPARE(statusOf(path("link")).st_mode & 0777, 0640u);
        QCOMPARE(names(), QStringList({u"link"_s, u"old"_s, u"other name"_s}));
    }

    void linkThatLeadsNowhereYet()
    {
        QVERIFY(QFile::link(u"target"_s, path("link")));
        ZELKFileExport work = exportOf("new", path("link"));
        QCOMPARE(carryOut(work), State::Done);
        QCOMPARE(readFile(path("target")), QByteArray("new"));
    }

    /// Somebody else makes a file of that name meanwhile.
    void fileThatComesMeanwhile()
    {
        ZELKFileExport work = exportOf("new", path("file"));
        work.advance(0);
        writeFile(path("file"), "old and longer");
        QCOMPARE(carryOut(work), State::Done);
        QCOMPARE(readFile(path("file")), QByteArray("new"));
    }

    void failures_data()
    {
        const Rows<QString, int> row; // path, error number
        row("folder", "/tmp", EISDIR);
        row("no such folder", "/nowhere/at/all", ENOENT);
        row("below a file", "/dev/null/x", ENOTDIR);
        row("full device", "/dev/full", ENOSPC);
    }
    void failures()
    {
        const auto [path, error] = Rows<QString, int>::fetch();
        ZELKFileExport work = exportOf("new", path);
        QCOMPARE(carryOut(work), State::Failed);
        QCOMPARE(work.error(), QString::fromLocal8Bit(std::strerror(error)));
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
        while (inPlace.state() == State::Producing)
            inPlace.advance(0);
        {
            const LargestFile limit(7 * megabyte);
            QCOMPARE(carryOut(inPlace), State::Failed);
        }
        QCOMPARE(readFile(path("old")), old);

        QVERIFY(::link(QFile::encodeName(path("old")).constData(),
                       QFile::encodeName(path("other name")).constData()) == 0);
        ZELKFileExport half = exportOf(bytes(10 * megabyte), path("old"));
        while (half.state() == State::Producing)
            half.advance(0);
        half.advance(0);
        {
            const LargestFile limit(6 * megabyte);
            QCOMPARE(carryOut(half), State::Failed);
        }
        QCOMPARE(names(), QStringList(u"other name"_s));
        QCOMPARE(readFile(path("other name")), QByteArray());
    }

    /// A pipe takes what is written in order; when its reader goes, that is all it wanted.
    void descriptors_data()
    {
        const Rows<bool> row;
        row("read", true);
        row("left", false);
    }
    void descriptors()
    {
        const auto [isRead] = Rows<bool>::fetch();
        std::signal(SIGPIPE, SIG_IGN);
        int ends[2];
        QVERIFY(::pipe2(ends, O_CLOEXEC) == 0);
        if (!isRead)
            ::close(ends[0]);
        ZELKFileExport work(std::make_unique<ZELKBytesSource>("some bytes"),
                            std::make_unique<ZELKExportFile>(ends[1], u"-"_s));
        QCOMPARE(carryOut(work), State::Done);
        if (isRead) {
            char read[20];
            QCOMPARE(::read(ends[0], read, sizeof read), 10);
            ::close(ends[0]);
        }
        ::close(ends[1]);
    }
};

QTEST_GUILESS_MAIN(ExportFileTest)
#include "tst_export_file.moc"
