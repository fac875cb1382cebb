#pragma once

#include "ZELKDictionary.h"

/// A command that a script gave, with what became of it. An error that is set again replaces the one before;
/// the script is told the last.
struct ZELKScriptCommand
{
    static constexpr int parameterError = -1702;
    static constexpr int fileError = -43;

    ZELKDictionary evaluatedArguments;
    int scriptErrorNumber = 0; ///< 0: none
    QString scriptErrorString = {};

    void setScriptError(int number, const QString &text)
    {
        scriptErrorNumber = number;
        scriptErrorString = text;
    }
};
