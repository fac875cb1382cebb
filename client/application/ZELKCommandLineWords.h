#pragma once

#include "ZELKCommandLineOptions.h"

#include <QHash>

#include <span>

/// The words that the command line is made of, and what each stands for.
namespace ZELKCommandLineWords {

const QHash<QString, ZELKCommandLineOptions::Command> &commands();
/// The tags of the preset ranges.
const QHash<QString, int> &rangeTags();
/// Of list; the other commands have formats of their own.
const QHash<QString, ZELKEntryWriter::Format> &formats();
const QHash<QString, ZELKAgentRequest::Action> &agentActions();
const QHash<QString, ZELKAgentController::State> &agentForms();

struct Option
{
    const char *name;
    /// What its value is called; empty for an option that has none.
    const char *value;
    /// The command that it belongs to; Window for one that goes with all.
    ZELKCommandLineOptions::Command command;
    /// The further ones that know it, a bit each.
    unsigned others = 0;

    bool goesWith(ZELKCommandLineOptions::Command given) const;
};
std::span<const Option> options();

} // namespace ZELKCommandLineWords
