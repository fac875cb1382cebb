#pragma once

#include "ZELKShutdownStates.h"

#include <QString>

/// The announced shut-down, in a small file of its own that is there from the announcement until the first
/// start after it. It is whole or not at all, and on the disk when an operation returns.
class ZELKFileShutdownMemory final : public ZELKShutdownMemory
{
public:
    explicit ZELKFileShutdownMemory(const QString &path);

    /// Nothing, too, when the file holds something else.
    std::optional<ZELKAnnouncedShutdown> recall() const override;
    /// A disk that does not take it is one console line.
    void remember(const ZELKAnnouncedShutdown &shutdown) override;
    void forget() override;

private:
    QString m_path;
};
