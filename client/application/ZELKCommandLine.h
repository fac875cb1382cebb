#pragma once

#include "ZELKApplicationSettings.h"
#include "ZELKApplicationWiring.h"
#include "ZELKCommandLineOptions.h"
#include "ZELKLWCAbsoluteDuration.h"

class ZELKLWCMainWindowController;
class ZELKTextOutput;

/// The commands that need no window of the user's. An application object and the main bundle's environment
/// are there.
class ZELKCommandLine
{
public:
    /// Exit statuses.
    static constexpr int done = 0;
    static constexpr int failed = 1;
    static constexpr int wrongUsage = 2;

    /// Outputs are not owned.
    ZELKCommandLine(const ZELKApplicationSettings &settings, const ZELKCommandLineOptions &options,
                    ZELKTextOutput &output, ZELKTextOutput &complaints);

    /// Runs the command and answers the exit status. What the program's parts assert is told as a complaint.
    int run();

private:
    bool runCommand();
    bool list();
    bool stats();
    ZELKLWCAbsoluteDuration presetPeriod(ZELKApplicationWiring &wiring) const;
    ZELKLWCAbsoluteDuration givenPeriod(ZELKApplicationWiring &wiring) const;
    bool exportLog();
    bool chooseRange(ZELKApplicationWiring &wiring);
    bool print();
    bool import();
    bool importFrom(int descriptor);
    bool snapshot();
    bool agent();
    void printLatest(const ZELKLWCLog &log);
    bool takePicture(ZELKApplicationWiring &wiring, ZELKLWCMainWindowController &window);

    bool usesAgent() const;
    ZELKApplicationWiring::World world() const;
    bool synchronise(ZELKApplicationWiring &wiring);
    bool finishOutput();
    void complain(const QString &text);

    ZELKApplicationSettings m_settings;
    ZELKCommandLineOptions m_options;
    ZELKTextOutput &m_output;
    ZELKTextOutput &m_complaints;
};
