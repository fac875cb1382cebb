#include "ZELKCommandLineWords.h"

namespace {

using Command = ZELKCommandLineOptions::Command;
using Format = ZELKEntryWriter::Format;
using AgentAction = ZELKAgentRequest::Action;
using ZELKCommandLineWords::Option;

template <typename... Commands>
constexpr unsigned also(Commands... commands)
{
    return ((1U << unsigned(commands)) | ...);
}

constexpr Option allOptions[] = {
    {"database", "FILE", Command::Window},
    {"profile", "NAME", Command::Window},
    {"sample", "", Command::Window},
    {"start-agent", "", Command::Window},
    {"or-picture", "FILE", Command::Window},
    {"range", "RANGE", Command::List, also(Command::Stats, Command::Export, Command::Print)},
    {"from", "DATE", Command::List, also(Command::Stats, Command::Export, Command::Print)},
    {"to", "DATE", Command::List, also(Command::Stats, Command::Export, Command::Print)},
    {"format", "FORMAT", Command::List, also(Command::Stats, Command::Export, Command::Agent)},
    {"picture", "FILE", Command::Snapshot},
    {"count", "NUMBER", Command::Snapshot},
    {"as", "FORM", Command::Agent},
    {"output", "FILE", Command::Export, also(Command::Print)},
    {"width", "NUMBER", Command::Export},
    {"height", "NUMBER", Command::Export},
    {"paper", "PAPER", Command::Print},
    {"landscape", "", Command::Print},
};

} // namespace

const QHash<QString, int> &ZELKCommandLineWords::rangeTags()
{
    static const QHash<QString, int> tags{
        {QStringLiteral("today"), 1},           {QStringLiteral("yesterday"), 2},
        {QStringLiteral("last-seven-days"), 3}, {QStringLiteral("this-month"), 4},
        {QStringLiteral("last-month"), 5},      {QStringLiteral("this-week"), 6},
        {QStringLiteral("last-week"), 7},       {QStringLiteral("everything"), 8}};
    return tags;
}

const QHash<QString, Format> &ZELKCommandLineWords::formats()
{
    static const QHash<QString, Format> formats{{QStringLiteral("table"), Format::Table},
                                                {QStringLiteral("tsv"), Format::Tsv},
                                                {QStringLiteral("json"), Format::Json}};
    return formats;
}

const QHash<QString, Command> &ZELKCommandLineWords::commands()
{
    static const QHash<QString, Command> commands{
        {QStringLiteral("list"), Command::List},         {QStringLiteral("stats"), Command::Stats},
        {QStringLiteral("export"), Command::Export},     {QStringLiteral("import"), Command::Import},
        {QStringLiteral("snapshot"), Command::Snapshot}, {QStringLiteral("agent"), Command::Agent},
        {QStringLiteral("print"), Command::Print}};
    return commands;
}

const QHash<QString, AgentAction> &ZELKCommandLineWords::agentActions()
{
    static const QHash<QString, AgentAction> actions{{QStringLiteral("status"), AgentAction::Status},
                                                     {QStringLiteral("install"), AgentAction::Install},
                                                     {QStringLiteral("remove"), AgentAction::Remove},
                                                     {QStringLiteral("update"), AgentAction::Update}};
    return actions;
}

const QHash<QString, ZELKAgentController::State> &ZELKCommandLineWords::agentForms()
{
    static const QHash<QString, ZELKAgentController::State> forms{
        {QStringLiteral("system"), ZELKAgentController::PrivilegedJob},
        {QStringLiteral("user"), ZELKAgentController::UserJob},
        {QStringLiteral("session"), ZELKAgentController::SessionApplication}};
    return forms;
}

bool Option::goesWith(Command given) const
{
    return command == Command::Window || command == given || (others & also(given)) != 0;
}

std::span<const Option> ZELKCommandLineWords::options()
{
    return allOptions;
}
