#pragma once

#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKPropertyList.h"

#include <QDir>
#include <QFile>

inline void writeTestFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s cannot be written", qPrintable(path));
}

inline void writeTestBundle(const QString &folder, const ZELKDictionary &info)
{
    writeTestFile(folder + QStringLiteral("/Info.plist"),
                  ZELKPropertyList::writeXml(QVariant::fromValue(info)).bytes);
}

/// The system's environment with that main bundle.
inline ZELKEnvironment testEnvironment(const QString &mainBundle)
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.mainBundle = std::make_shared<ZELKBundle>(mainBundle);
    return environment;
}
