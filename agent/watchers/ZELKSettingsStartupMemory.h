#pragma once

#include "ZELKStartup.h"

class ZELKUserDefaults;

/// The last startup, kept in the agent's settings.
class ZELKSettingsStartupMemory final : public ZELKStartupMemory
{
public:
    /// `settings` outlive it.
    explicit ZELKSettingsStartupMemory(ZELKUserDefaults &settings);

    std::optional<ZELKStartup> recall(const QString &bootID) const override;
    void remember(const QString &bootID, const ZELKStartup &startup) override;

private:
    ZELKUserDefaults &m_settings;
};
