#include "ZELKMultipartBody.h"

#include "ZELKFormat.h"

#include <QFile>
#include <QUrl>

namespace {

void append(QByteArray &body, const char *format, std::initializer_list<ZELKFormatArgument> arguments)
{
    body += ZELKFormat(format, arguments).toUtf8();
}

void appendFile(QByteArray &body, const QString &key, const QString &fileName, const QByteArray &contents)
{
    append(body, "Content-Disposition: form-data; name=\"%@\"; filename=\"%@\"\r\n", {key, fileName});
    body += "Content-Type: application/octet-stream\r\n\r\n";
    body += contents;
}

QByteArray contentsOf(const QUrl &url)
{
    QFile file(url.toLocalFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void appendValue(QByteArray &body, const QString &key, const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QString:
        append(body, "Content-Disposition: form-data; name=\"%@\"\r\n\r\n", {key});
        body += value.toString().toUtf8();
        break;
    case QMetaType::QUrl:
        if (const QUrl url = value.toUrl(); url.isLocalFile())
            appendFile(body, key, url.fileName(), contentsOf(url));
        break;
    case QMetaType::QByteArray:
        appendFile(body, key, key, value.toByteArray());
        break;
    default:
        break;
    }
}

} // namespace

QByteArray ZELKMultipartBody::make(const ZELKDictionary &dictionary, const QString &boundary)
{
    QByteArray body;
    for (const auto &[key, value] : dictionary) {
        append(body, "--%@\r\n", {boundary});
        appendValue(body, key, value);
        body += "\r\n";
    }
    append(body, "--%@--\r\n", {boundary});
    return body;
}
