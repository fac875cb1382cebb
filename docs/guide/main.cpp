#include "ZELKGuideDocument.h"
#include "ZELKGuidePictures.h"

#include <QApplication>
#include <QFile>

#include <cstdio>
#include <exception>

namespace {

/// Makes the guide; what goes wrong is thrown.
void make(const QString &bundle, const QString &text, const QString &guide)
{
    QFile file(text);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("the text cannot be read");
    ZELKGuideDocument document(QString::fromUtf8(file.readAll()), ZELKGuidePictures(bundle).take());
    if (!document.write(guide))
        throw std::runtime_error("the guide cannot be written");
}

} // namespace

/// Writes the user guide as PDF. What Qt and the log say meanwhile is nobody's business in a build.
int main(int argc, char **argv)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: lullwatch-guide BUNDLE TEXT GUIDE\n", stderr);
        return 2;
    }
    try {
        make(arguments[1], arguments[2], arguments[3]);
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "lullwatch-guide: %s\n", failure.what());
        return 1;
    }
    return 0;
}
