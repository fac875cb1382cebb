#include "ZELKProgram.h"

#include "ZELKAssertion.h"
#include "ZELKCommandLine.h"
#include "ZELKCommandLineText.h"
#include "ZELKEnvironment.h"
#include "ZELKSampleLog.h"
#include "ZELKTerminationSignals.h"
#include "ZELKTextOutput.h"
#include "ZELKWindowSession.h"

#include <QApplication>

#include <csignal>
#include <memory>
#include <utility>

#include <unistd.h>

namespace {

using Options = ZELKCommandLineOptions;

constexpr char platformVariable[] = "QT_QPA_PLATFORM";

bool isSet(const char *variable)
{
    return !qEnvironmentVariableIsEmpty(variable);
}

QtMessageHandler otherMessages = nullptr;

/// Of a window without a display Qt complains that its size cannot be hinted at; there is nobody to hint to.
void leaveOutSizeHints(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (text != QLatin1String("This plugin does not support propagateSizeHints()"))
        otherMessages(type, context, text);
}

bool exportsPicture(const Options &options)
{
    return options.command == Options::Command::Export && options.exportRequest.isPicture();
}

/// What draws for a file needs no display.
bool isOffscreen(const Options &options)
{
    return options.command == Options::Command::Snapshot || options.command == Options::Command::Print ||
           exportsPicture(options);
}

/// Qt ends the program when it finds no display. Where the user has not chosen a platform, it is told to fall
/// back on one without a display, which is then refused in words.
void preparePlatform(const Options &options)
{
    if (isOffscreen(options) || !options.orPicture.isEmpty())
        otherMessages = qInstallMessageHandler(leaveOutSizeHints);
    if (isOffscreen(options)) {
        qputenv(platformVariable, "offscreen");
    } else if (!isSet(platformVariable)) {
        const bool prefersWayland = qgetenv("XDG_SESSION_TYPE") == "wayland" || !isSet("DISPLAY");
        QByteArray platforms = isSet("DISPLAY") ? "xcb;" : "";
        if (isSet("WAYLAND_DISPLAY"))
            platforms = prefersWayland ? "wayland;" + platforms : platforms + "wayland;";
        qputenv(platformVariable, platforms + "offscreen");
    }
}

/// Only Qt, and only now, is told of a platform: it is no business of what is started later, as the agent is.
std::unique_ptr<QCoreApplication> makeWidgetApplication(const Options &options, int &argc, char **argv)
{
    const QByteArray chosen = qgetenv(platformVariable);
    preparePlatform(options);
    auto application = std::make_unique<QApplication>(argc, argv);
    if (chosen.isEmpty())
        qunsetenv(platformVariable);
    else
        qputenv(platformVariable, chosen);
    return application;
}

bool needsWidgets(const Options &options)
{
    return options.command == Options::Command::Window || options.command == Options::Command::Print ||
           exportsPicture(options) ||
           (options.command == Options::Command::Snapshot && !options.picture.isEmpty());
}

std::unique_ptr<QCoreApplication> makeApplication(const Options::Parsed &parsed, int &argc, char **argv)
{
    if (parsed.outcome == Options::Outcome::Run && needsWidgets(parsed.options))
        return makeWidgetApplication(parsed.options, argc, argv);
    return std::make_unique<QCoreApplication>(argc, argv);
}

ZELKEnvironment environmentWithMainBundle()
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.mainBundle = std::make_shared<const ZELKBundle>(
        ZELKBundle::mainBundlePath(QCoreApplication::applicationDirPath()), environment.locale.name());
    return environment;
}

class Run
{
public:
    Run(Options::Parsed parsed, bool platformIsChosen)
        : m_parsed(std::move(parsed))
        , m_platformIsChosen(platformIsChosen)
    {
    }
    int run();

private:
    int tell(const QString &text);
    int runOptions();
    int runWindow(const ZELKApplicationSettings &settings);
    int runCommand(const ZELKApplicationSettings &settings, const Options &options)
    {
        return ZELKCommandLine(settings, options, m_output, m_complaints).run();
    }
    void complain(const QString &words)
    {
        m_complaints.write(QStringLiteral("lullwatch: ") + ZELKTextOutput::safe(words) + QLatin1Char('\n'));
    }

    Options::Parsed m_parsed;
    bool m_platformIsChosen;
    ZELKTextOutput m_output{STDOUT_FILENO};
    ZELKTextOutput m_complaints{STDERR_FILENO};
};

int Run::run()
{
    const auto bundle = ZELKEnvironment::current().mainBundle;
    if (m_parsed.outcome == Options::Outcome::Wrong) {
        complain(m_parsed.complaint);
        complain(ZELKCommandLineText("\"lullwatch --help\" tells what there is."));
        return ZELKCommandLine::wrongUsage;
    }
    if (!bundle->isValid()) {
        complain(ZELKFormat(ZELKCommandLineText("The application's folder %@ is missing or damaged."),
                            {bundle->path()}));
        return ZELKCommandLine::failed;
    }
    if (m_parsed.outcome == Options::Outcome::Help)
        return tell(ZELKCommandLineText("ZELKCommandLine.help"));
    if (m_parsed.outcome == Options::Outcome::Version)
        return tell(ZELKFormat("lullwatch %@\n",
                               {bundle->infoDictionary().string(QStringLiteral("CFBundleVersion"))}));
    return runOptions();
}

int Run::tell(const QString &text)
{
    m_output.write(text);
    if (m_output.flush() != ZELKTextOutput::State::Failed)
        return ZELKCommandLine::done;
    complain(ZELKFormat(ZELKCommandLineText("The output cannot be written: %@"), {m_output.error()}));
    return ZELKCommandLine::failed;
}

int Run::runOptions()
{
    const Options &options = m_parsed.options;
    const ZELKApplicationSettings settings{ZELKEnvironment::current().mainBundle, options.profile,
                                           options.databaseFile};
    ZELKSampleLog sample(settings);
    if (options.isSample) {
        if (const auto complaint = sample.prepare()) {
            complain(*complaint);
            return ZELKCommandLine::failed;
        }
    }
    if (options.command != Options::Command::Window)
        return runCommand(settings, options);
    const bool isSeen = QGuiApplication::platformName() != QLatin1String("offscreen");
    if (!isSeen && !options.orPicture.isEmpty()) {
        Options instead = options;
        instead.command = Options::Command::Snapshot;
        instead.picture = options.orPicture;
        return runCommand(settings, instead);
    }
    if (!isSeen && !m_platformIsChosen) {
        complain(ZELKCommandLineText("There is no display to open the window on. "
                                     "\"lullwatch list\" and \"lullwatch snapshot\" need none."));
        return ZELKCommandLine::failed;
    }
    return runWindow(settings);
}

int Run::runWindow(const ZELKApplicationSettings &settings)
{
    int status = ZELKCommandLine::failed;
    zelkGuard([&] {
        const ZELKTerminationSignals termination;
        ZELKWindowSession session(settings, ZELKApplicationWiring::World::real(settings));
        QObject::connect(&termination, &ZELKTerminationSignals::received, &session,
                         [] { QCoreApplication::exit(ZELKCommandLine::done); });
        session.start(m_parsed.options.startsAgent);
        status = QApplication::exec();
        session.applicationWillTerminate();
    });
    return status;
}

} // namespace

int ZELKProgram::run(int &argc, char **argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const bool platformIsChosen = isSet(platformVariable);
    const std::unique_ptr<QCoreApplication> application =
        makeApplication(Options::parse(arguments), argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lullwatch"));
    const ZELKEnvironmentScope scope(environmentWithMainBundle());
    if (qobject_cast<QApplication *>(application.get())) {
        QGuiApplication::setApplicationDisplayName(QStringLiteral("Lullwatch"));
        QGuiApplication::setDesktopFileName(QStringLiteral("org.zelk.lullwatch"));
    }
    // Once more, since complaints have a language only now.
    return Run(Options::parse(arguments), platformIsChosen).run();
}
