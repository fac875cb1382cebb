#include "ZELKUpdateCheck.h"

#include "ZELKAssertion.h"

#include <QPointer>
#include <QProcess>
#include <QTimer>
#include <QVersionNumber>
#include <QXmlStreamReader>

#include <chrono>

namespace {

using namespace std::chrono_literals;

constexpr auto longest = 10s;

void runProgram(const QString &program, const QStringList &arguments,
                const std::function<void(const ZELKUpdateCheck::Output &)> &then)
{
    auto *process = new QProcess;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process->setProcessEnvironment(environment);
    process->setStandardErrorFile(QProcess::nullDevice());
    const auto end = [process, then](bool succeeded) {
        process->disconnect();
        process->deleteLater();
        const QByteArray output = process->readAllStandardOutput();
        zelkGuard([&] { then(succeeded ? ZELKUpdateCheck::Output(output) : std::nullopt); });
    };
    QObject::connect(process, &QProcess::finished, process, [end](int status, QProcess::ExitStatus exit) {
        end(exit == QProcess::NormalExit && status == 0);
    });
    QObject::connect(process, &QProcess::errorOccurred, process, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(false);
    });
    QTimer::singleShot(longest, process, [process] { process->kill(); });
    process->start(program, arguments, QIODevice::ReadOnly);
}

/// "  Installed: 1.2-1" to "1.2-1".
QString field(const QByteArray &text, const char *name)
{
    for (const QByteArray &line : text.split('\n'))
        if (line.trimmed().startsWith(name))
            return QString::fromUtf8(line.trimmed().mid(qsizetype(qstrlen(name)))).trimmed();
    return {};
}

} // namespace

ZELKUpdateCheck::ZELKUpdateCheck(Subject subject, Run run, QObject *parent)
    : QObject(parent)
    , m_subject(std::move(subject))
    , m_run(std::move(run))
{
}

ZELKUpdateCheck::Run ZELKUpdateCheck::programs()
{
    return runProgram;
}

void ZELKUpdateCheck::start()
{
    m_run(QStringLiteral("dpkg-query"), {QStringLiteral("-S"), m_subject.executable},
          [this, self = QPointer(this)](const Output &owners) {
              if (!self)
                  return;
              const QString package = owners ? packageOf(*owners) : QString();
              if (package.isEmpty())
                  askCatalogue();
              else
                  askPackageManager(package);
          });
}

void ZELKUpdateCheck::askPackageManager(const QString &package)
{
    m_run(QStringLiteral("apt-cache"), {QStringLiteral("policy"), package},
          [this, self = QPointer(this)](const Output &policy) {
              if (!self)
                  return;
              const Answer answer = policy ? answerOfApt(*policy) : Answer();
              if (answer.kind == Answer::Kind::Unknown)
                  askCatalogue();
              else
                  Q_EMIT finished(answer);
          });
}

void ZELKUpdateCheck::askCatalogue()
{
    m_run(QStringLiteral("appstreamcli"), {QStringLiteral("dump"), m_subject.identifier},
          [this, self = QPointer(this)](const Output &component) {
              if (self)
                  Q_EMIT finished(component ? answerOfCatalogue(*component, m_subject.version) : Answer());
          });
}

QString ZELKUpdateCheck::packageOf(const QByteArray &owners)
{
    const qsizetype colon = owners.indexOf(": ");
    const QByteArray package = owners.first(std::max<qsizetype>(0, colon));
    return package.contains(',') || owners.trimmed().contains('\n') ? QString() : QString::fromUtf8(package);
}

ZELKUpdateCheck::Answer ZELKUpdateCheck::answerOfApt(const QByteArray &policy)
{
    const QString installed = field(policy, "Installed:");
    const QString candidate = field(policy, "Candidate:");
    const QString none = QStringLiteral("(none)");
    if (installed.isEmpty() || candidate.isEmpty() || installed == none || candidate == none)
        return {};
    return {installed == candidate ? Answer::Kind::Newest : Answer::Kind::Newer, candidate,
            QStringLiteral("apt")};
}

ZELKUpdateCheck::Answer ZELKUpdateCheck::answerOfCatalogue(const QByteArray &component,
                                                           const QString &version)
{
    QXmlStreamReader reader(component);
    QVersionNumber newest;
    QString spelled;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement || reader.name() != QLatin1String("release"))
            continue;
        const QString release = reader.attributes().value(QLatin1String("version")).toString();
        if (const QVersionNumber number = QVersionNumber::fromString(release); number > newest) {
            newest = number;
            spelled = release;
        }
    }
    if (newest.isNull())
        return {};
    const bool isNewer = newest > QVersionNumber::fromString(version);
    return {isNewer ? Answer::Kind::Newer : Answer::Kind::Newest, isNewer ? spelled : version,
            QStringLiteral("AppStream")};
}
