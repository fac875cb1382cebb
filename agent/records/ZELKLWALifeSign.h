#pragma once

#include "ZELKDate.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// When an agent was last seen alive: the time of an empty file. The system writes that to the disk when it
/// likes, so that a sign of life costs nothing; what it loses with the power is told by the records
/// themselves.
class ZELKLWALifeSign
{
public:
    explicit ZELKLWALifeSign(const QString &path);

    /// A place that can not be written to is no matter.
    void show(ZELKDate now);
    std::optional<ZELKDate> last() const;

private:
    QByteArray m_path;
};
