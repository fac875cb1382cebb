#pragma once

#include <QByteArrayView>

#include <memory>

class QIODevice;
class QString;

/// A file in the file (OLE): named streams, written one after the other. Without finish() what the device
/// holds is no such file.
class ZELKCompoundFile
{
public:
    /// 16 bytes that say what is in it.
    ZELKCompoundFile(QIODevice &device, QByteArrayView classIdentifier);
    ZELKCompoundFile(const ZELKCompoundFile &) = delete;
    ZELKCompoundFile &operator=(const ZELKCompoundFile &) = delete;
    ~ZELKCompoundFile();

    /// Each of these says whether the device took everything.
    bool beginStream(const char *name);
    bool append(QByteArrayView bytes);
    /// Over what was written first in the stream.
    bool replaceBeginning(QByteArrayView bytes);
    bool endStream();
    /// What file managers show; empty texts are left out.
    bool addSummary(const QString &title, const QString &application);
    bool finish();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};
