#pragma once

#include "ZELKPowerSourceNames.h"

class ZELKUserDefaults;

/// The names of power sources, kept in the agent's settings.
class ZELKSettingsPowerSourceNames final : public ZELKPowerSourceNameMemory
{
public:
    /// `settings` outlive it.
    explicit ZELKSettingsPowerSourceNames(ZELKUserDefaults &settings);

    Names recall() const override;
    void remember(const Names &names) override;

private:
    ZELKUserDefaults &m_settings;
};
