#pragma once

#include "ZELKShutdownStates.h"

#include <QString>

/// The announced shut-down, in a small file of its own that is there only while one is pending. It is whole
/// or not at all, and on the disk when an operation returns.
class ZELKFileShutdownMemory final : public ZELKShutdownMemory
{
public:
    explicit ZELKFileShutdownMemory(const QString &path);

    /// Nothing, too, when the file holds something else.
    std::optional<ZELKPendingShutdown> recall() const override;
    /// A disk that does not take it is one console line.
    void remember(const ZELKPendingShutdown &shutdown) override;
    void forget() override;

private:
    QString m_path;
};
