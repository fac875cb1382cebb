#pragma once

#include <QString>

/// The user's folders that an installation of the agent for the user goes to.
struct ZELKAgentFolders
{
    QString applicationSupport; ///< $XDG_DATA_HOME
    QString library;            ///< $XDG_CONFIG_HOME

    static ZELKAgentFolders ofUser();
};
