#pragma once

#include "ZELKExportSource.h"

#include <QByteArray>

/// Bytes that are there already, such as a picture.
class ZELKBytesSource : public ZELKExportSource
{
public:
    explicit ZELKBytesSource(const QByteArray &bytes)
        : m_bytes(bytes)
    {
    }

    Outcome writeSome(QIODevice &device) override;
    double fraction() const override;

private:
    QByteArray m_bytes;
    qsizetype m_written = 0;
};
