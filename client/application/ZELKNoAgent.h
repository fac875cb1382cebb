#pragma once

#include "ZELKAgentPorts.h"

/// A world in which there is no agent and none can be started.
namespace ZELKNoAgent {

ZELKAgentPorts ports();
/// Not connected.
QDBusConnection bus();

} // namespace ZELKNoAgent
