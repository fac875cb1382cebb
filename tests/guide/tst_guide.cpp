#include "WindowBed.h"
#include "ZELKGuideDocument.h"

#include <QFile>
#include <QMenu>
#include <QProcess>
#include <QRegularExpression>

namespace {

QString output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s failed", qPrintable(program));
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// The text of each page, in the order of reading.
QStringList pagesOf(const QString &path)
{
    QStringList pages = output(u"pdftotext"_s, {u"-layout"_s, path, u"-"_s}).split(u'\f');
    pages.removeLast();
    return pages;
}

/// A picture that lies on two pages is counted for both.
int picturesOf(const QString &path)
{
    return int(output(u"pdfimages"_s, {u"-list"_s, path}).count(u'\n')) - 2;
}

QString guideText()
{
    QFile file(QStringLiteral(GUIDE_TEXT));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString guidePath()
{
    return applicationEnvironment().mainBundle->pathForResource(u"Lullwatch User Guide"_s, u"pdf"_s);
}

} // namespace

class GuideTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Rows of two lines, listings, pictures and headings in many places of a page.
    void nothingIsTorn()
    {
        QImage picture(200, 150, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QString html;
        for (int part = 0; part < 12; ++part) {
            html += u"<h2>Chapter%1</h2><table>"_s.arg(part);
            for (int row = 0; row < 7 + part; ++row)
                html +=
                    u"<tr><td>row%1x%2above<br>row%1x%2below</td><td>right</td></tr>"_s.arg(part).arg(row);
            html +=
                u"</table><p><img src=\"red\" width=\"200\"></p><pre>\nfirst%1\nmiddle\nlast%1\n</pre>"_s.arg(
                    part);
        }
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"torn.pdf"_s);
        QVERIFY(ZELKGuideDocument(html, {{u"red"_s, picture}}).write(path));
        const QStringList pages = pagesOf(path);
        QVERIFY(pages.size() > 5);
        QCOMPARE(picturesOf(path), 12);
        int rows = 0;
        static const QRegularExpression above(u"(row\\d+x\\d+)above|first(\\d+)"_s);
        for (const QString &page : pages) {
            for (auto match = above.globalMatch(page); match.hasNext();) {
                const QRegularExpressionMatch found = match.next();
                const QString end =
                    found.hasCaptured(2) ? u"last"_s + found.captured(2) : found.captured(1) + u"below"_s;
                QVERIFY2(page.contains(end), qPrintable(end));
                ++rows;
            }
            const QString number = page.trimmed().section(u'\n', -1).trimmed();
            QCOMPARE(number, QString::number(pages.indexOf(page) + 1));
            static const QRegularExpression lastHeading(u"Chapter\\d+\\s+\\d+\\s*$"_s);
            QVERIFY2(!page.contains(lastHeading), qPrintable(page));
        }
        QCOMPARE(rows, 12 * 7 + 66 + 12);
    }

    void contentsTellThePage()
    {
        const QStringList pages = pagesOf(guidePath());
        static const QRegularExpression heading(u"<h2[^>]*>(.*)</h2>"_s);
        int headings = 0;
        for (auto match = heading.globalMatch(guideText()); match.hasNext(); ++headings) {
            const QString name = match.next().captured(1);
            const QRegularExpression line(u"^\\s*%1\\s+(\\d+)$"_s.arg(name),
                                          QRegularExpression::MultilineOption);
            const int page = line.match(pages.first()).captured(1).toInt();
            QVERIFY2(page > 1 && page <= pages.size(), qPrintable(name));
            const QRegularExpression alone(u"^\\s*%1$"_s.arg(name), QRegularExpression::MultilineOption);
            QVERIFY2(pages[page - 1].contains(alone), qPrintable(name));
        }
        QVERIFY(headings > 5);
    }

    void theGuideIsThere()
    {
        QVERIFY(!guidePath().isEmpty());
        QVERIFY(output(u"pdfinfo"_s, {guidePath()})
                    .contains(QRegularExpression(u"Title: +Lullwatch User Guide\n"_s)));
        QVERIFY(pagesOf(guidePath()).size() >= 5);
        QCOMPARE(picturesOf(guidePath()), int(guideText().count(u"<img "_s)));
    }

    void helpLeadsToIt()
    {
        Session bed;
        QVERIFY(bed.find<QAction>("actionUserGuide").isEnabled());
        QVERIFY(bed.wiring.settings().bundle->infoDictionary().contains(u"CFBundleHelpBookName"_s));
        const auto &feedback = bed.find<QAction>("actionFeedback"); // no address is configured
        QVERIFY(!feedback.isEnabled() && !feedback.toolTip().isEmpty());
        const auto &menu = bed.find<QMenu>("helpMenu");
        QVERIFY(menu.toolTipsVisible());
        QStringList names;
        for (const QAction *action : menu.actions())
            names.append(action->isSeparator() ? u"-"_s : action->objectName());
        QCOMPARE(names,
                 (QStringList{u"actionUserGuide"_s, u"actionOpenSampleLog"_s, u"actionFeedback"_s, u"-"_s,
                              u"actionCheckForUpdates"_s, u"actionAbout"_s, u"actionAboutQt"_s}));
    }
};

QTEST_MAIN(GuideTest)
#include "tst_guide.moc"
