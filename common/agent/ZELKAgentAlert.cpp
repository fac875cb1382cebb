#include "ZELKAgentAlert.h"

#include "ZELKAgentConfiguration.h"

using ZELKAgentConfiguration::className;
using ZELKAgentConfiguration::fail;

/// The button is not named: its title is what could not be had.
void ZELKAgentAlert::failToAddButton()
{
    fail(ZELKFormat("%@ failed to add '%@' button", {className()}));
}

void ZELKAgentAlert::failWithoutInterface()
{
    fail(ZELKFormat("%@ nib is missing or malformed", {className()}));
}

void ZELKAgentAlert::failWithoutView()
{
    fail(ZELKFormat("%@ nib view is not connected", {className()}));
}

void ZELKAgentAlert::failWithoutChoice()
{
    fail(ZELKFormat("%@ nib choice is not connected", {className()}));
}
