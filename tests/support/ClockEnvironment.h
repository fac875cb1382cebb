#pragma once

#include "ZELKEnvironment.h"

/// The system's environment but for its clock.
inline ZELKEnvironment environmentWith(std::shared_ptr<const ZELKClock> clock)
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.clock = std::move(clock);
    return environment;
}
