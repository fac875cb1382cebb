#include "ZELKProgram.h"

#include "ZELKAssertion.h"
#include "ZELKCommandLine.h"
#include "ZELKEnvironment.h"
#include "ZELKTextOutput.h"
#include "ZELKWindowSession.h"

#include <QApplication>

#include <csignal>

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

/// Qt ends the program when it finds no display. Where the user has not chosen a platform, it is told to fall
/// back on one without a display, which is then refused in words.
void preparePlatform(Options::Command command)
{
    if (command == Options::Command::Snapshot) {
        qputenv(platformVariable, "offscreen");
        otherMessages = qInstallMessageHandler(leaveOutSizeHints);
    } else if (!isSet(platformVariable)) {
        const bool prefersWayland = qgetenv("XDG_SESSION_TYPE") == "wayland" || !isSet("DISPLAY");
        QByteArray platforms = isSet("DISPLAY") ? "xcb;" : "";
        if (isSet("WAYLAND_DISPLAY"))
            platforms = prefersWayland ? "wayland;" + platforms : platforms + "wayland;";
        qputenv(platformVariable, platforms + "offscreen");
    }
}

bool needsWidgets(const Options &options)
{
    return options.command == Options::Command::Window ||
           (options.command == Options::Command::Snapshot && !options.picture.isEmpty());
}

std::unique_ptr<QCoreApplication> makeApplication(const Options::Parsed &parsed, int &argc, char **argv)
{
    if (parsed.outcome == Options::Outcome::Run && needsWidgets(parsed.options)) {
        preparePlatform(parsed.options.command);
        return std::make_unique<QApplication>(argc, argv);
    }
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
    Run(const Options::Parsed &parsed, bool platformIsChosen)
        : m_parsed(parsed)
        , m_platformIsChosen(platformIsChosen)
    {
    }
    int run();

private:
    int runOptions();
    int runWindow(const ZELKApplicationSettings &settings);
    void complain(const QString &words)
    {
        m_complaints.write(QStringLiteral("lullwatch: ") + ZELKTextOutput::safe(words) + QLatin1Char('\n'));
    }

    const Options::Parsed &m_parsed;
    bool m_platformIsChosen;
    ZELKTextOutput m_output{STDOUT_FILENO};
    ZELKTextOutput m_complaints{STDERR_FILENO};
};

int Run::run()
{
    switch (m_parsed.outcome) {
    case Options::Outcome::Help:
        m_output.write(Options::help());
        return ZELKCommandLine::done;
    case Options::Outcome::Version:
        m_output.write(QStringLiteral("lullwatch %1\n")
                           .arg(ZELKEnvironment::current().mainBundle->infoDictionary().string(
                               QStringLiteral("CFBundleVersion"))));
        return ZELKCommandLine::done;
    case Options::Outcome::Wrong:
        complain(m_parsed.complaint);
        complain(QStringLiteral("\"lullwatch --help\" tells what there is."));
        return ZELKCommandLine::wrongUsage;
    case Options::Outcome::Run:
        break;
    }
    return runOptions();
}

int Run::runOptions()
{
    const auto bundle = ZELKEnvironment::current().mainBundle;
    if (!bundle->isValid()) {
        complain(QStringLiteral("The application's folder %1 is missing or damaged.").arg(bundle->path()));
        return ZELKCommandLine::failed;
    }
    const ZELKApplicationSettings settings{bundle, m_parsed.options.profile, m_parsed.options.databaseFile};
    if (m_parsed.options.command == Options::Command::Window)
        return runWindow(settings);
    return ZELKCommandLine(settings, m_parsed.options, m_output, m_complaints).run();
}

int Run::runWindow(const ZELKApplicationSettings &settings)
{
    if (!m_platformIsChosen && QGuiApplication::platformName() == QLatin1String("offscreen")) {
        complain(QStringLiteral("There is no display to open the window on. "
                                "\"lullwatch list\" and \"lullwatch snapshot\" need none."));
        return ZELKCommandLine::failed;
    }
    int status = ZELKCommandLine::failed;
    zelkGuard([&] {
        ZELKWindowSession session(settings, ZELKApplicationWiring::World::real(settings));
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
    const Options::Parsed parsed = Options::parse(arguments);
    const bool platformIsChosen = isSet(platformVariable);
    const std::unique_ptr<QCoreApplication> application = makeApplication(parsed, argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lullwatch"));
    const ZELKEnvironmentScope scope(environmentWithMainBundle());
    if (qobject_cast<QApplication *>(application.get())) {
        QGuiApplication::setApplicationDisplayName(QStringLiteral("Lullwatch"));
        QGuiApplication::setDesktopFileName(QStringLiteral("org.zelk.lullwatch"));
    }
    return Run(parsed, platformIsChosen).run();
}
