#pragma once

#include "ZELKAgentCommand.h"
#include "ZELKDate.h"
#include "ZELKEntryWriter.h"
#include "ZELKExportCommand.h"
#include "ZELKPrintCommand.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

#include <optional>

/// What the command line asks for. A value.
struct ZELKCommandLineOptions
{
    enum class Command { Window, List, Stats, Export, Print, Import, Snapshot, Agent };

    /// A local day, or a moment of one.
    struct Moment
    {
        QDate day;
        std::optional<QTime> time;

        /// "YYYY-MM-DD", or that with "THH:MM" or "THH:MM:SS".
        static std::optional<Moment> parse(const QString &text);
        /// The first moment of it, and the first one after it: of the day, or of the second.
        ZELKDate begin() const;
        ZELKDate end() const;
    };

    Command command = Command::Window;
    /// Both empty when not given.
    QString databaseFile;
    QString profile;
    /// The profile is that of the sample log.
    bool isSample = false;
    bool startsAgent = false;
    /// window: where there is no display, a snapshot with this picture instead; empty for a refusal.
    QString orPicture;

    /// list, stats, print and exported pictures: the tag of a preset range, and within that from and to.
    int rangeTag = 8;
    std::optional<Moment> from;
    std::optional<Moment> to;
    ZELKEntryWriter::Format format = ZELKEntryWriter::Format::Table;
    bool statsAsJson = false;
    ZELKExportRequest exportRequest;
    ZELKPrintRequest printRequest;
    /// import: "-" for standard input.
    QString file;
    /// snapshot: empty for no picture. The count goes with orPicture too.
    QString picture;
    int count = 20;
    /// agent
    ZELKAgentRequest agent;

    enum class Outcome {
        Run,
        Help,
        Version,
        Wrong, ///< `complaint` says what is wrong with the arguments
    };
    struct Parsed;
    /// `arguments` begins with the program's name. Options may stand before and after the command. Complaints
    /// are in the language of the current environment.
    static Parsed parse(const QStringList &arguments);
};

struct ZELKCommandLineOptions::Parsed
{
    Outcome outcome = Outcome::Run;
    QString complaint;
    ZELKCommandLineOptions options;
};
