#include "NightBed.h"

#include "AccountingRecord.h"
#include "Files.h"
#include "PowerLines.h"

#include <QCoreApplication>
#include <QTest>

#include <cmath>
#include <sqlite3.h>

namespace {

const QString batteryPath = u"/org/freedesktop/UPower/devices/battery_BAT0"_s;
const QString mainsPath = u"/org/freedesktop/UPower/devices/line_power_AC"_s;
constexpr char readings[] = "event = 'Power state changed'";

void await(const std::function<bool()> &condition)
{
    if (!QTest::qWaitFor(condition, 20000))
        qFatal("what was waited for did not come");
}

QTime timeOfDay(const char *time)
{
    return QTime::fromString(QString::fromLatin1(time), u"HH:mm"_s);
}

} // namespace

NightAgent::NightAgent(const ZELKLWAOptions &options, const ZELKLWAMachine &machine)
    : agent(std::make_shared<const ZELKBundle>(QCoreApplication::applicationDirPath()),
            {session.bus, system.bus}, options, machine)
{
}

NightBed::NightBed(double day)
    : m_clock(std::make_shared<TestClock>(day))
{
    m_options.database = path("agent.db");
    m_options.settings = path("agent.ini");
    m_options.wtmp = path("wtmp");
    m_options.powerSupply = path("supplies");
    m_options.pastAccounting = QStringList(m_options.wtmp); // and nothing else of this machine's past
    m_machine.suspendClock = m_clock;
    m_machine.kernel = {path("boot_id"), path("stat"), path("utmp"), {}};
    m_upower.devices[batteryPath] =
        with(upowerBattery, {{u"Percentage"_s, 83.0}, {u"UpdateTime"_s, qulonglong(seconds())}});
    m_upower.devices[mainsPath] = {
        {u"Type"_s, 1U}, {u"NativePath"_s, u"AC"_s}, {u"PowerSupply"_s, true}, {u"Online"_s, false}};
    m_upower.refresh = [](const QString &) {}; // there is nothing newer
    m_upower.come();
}

void NightBed::moveTo(const char *time, bool asleep)
{
    QDateTime then = local();
    then.setTime(timeOfDay(time));
    if (then < local())
        then = then.addDays(1);
    const double seconds = ZELKDate::fromDateTime(then).timeIntervalSinceDate(m_clock->now());
    m_clock->pass(asleep ? 0.0 : seconds, asleep ? seconds : 0.0);
}

void NightBed::addJournal(const QByteArray &bytes)
{
    writeFile(path("system.journal"), bytes);
    m_options.pastJournals = QStringList(path("system.journal"));
}

void NightBed::boot(const char *time)
{
    moveTo(time);
    m_clock->boot();
    const QByteArray since1970 = QByteArray::number(seconds());
    writeFile(path("boot_id"), "0b6f7d5c-9f4e-4d7a-8b53-00" + since1970 + '\n');
    writeFile(path("stat"), "btime " + since1970 + '\n');
    writeFile(path("utmp"), account(BOOT_TIME, "reboot"));
}

void NightBed::shutDown(const char *time)
{
    moveTo(time);
    if (m_agent) {
        isRecorded([this] { m_logind.prepareForShutdown(true); });
        m_agent->agent.terminate();
        m_agent.reset();
    }
    account(RUN_LVL, "shutdown");
}

void NightBed::rotateAccounting() const
{
    if (!QFile::rename(path("wtmp"), path("wtmp.1")))
        qFatal("the accounting can not be rotated");
}

void NightBed::startAgent(const char *time)
{
    moveTo(time);
    const int before = records(readings);
    m_agent.emplace(m_options, m_machine);
    if (!m_agent->agent.start())
        qFatal("the agent does not start");
    await([&] { return m_logind.locks() > 0 && records(readings) > before && hasReadPast(); });
}

void NightBed::fallAsleep(const char *time)
{
    moveTo(time);
    isRecorded([this] { m_logind.prepareForSleep(true); });
    await([this] { return m_logind.locks() == 0; });
}

void NightBed::wake(const char *time)
{
    moveTo(time, true);
    if (!m_agent)
        return;
    isRecorded([this] { m_logind.prepareForSleep(false); });
    await([this] { return m_logind.locks() > 0; });
}

void NightBed::batteryIs(const char *time, double percent, bool charging)
{
    moveTo(time);
    isRecorded([&] {
        m_upower.change(batteryPath, {{u"Percentage"_s, percent},
                                      {u"State"_s, charging ? 1U : 2U},
                                      {u"UpdateTime"_s, qulonglong(seconds())}});
    });
}

void NightBed::batteryWas(const char *time, double percent)
{
    QDateTime then = local().addDays(-1);
    then.setTime(timeOfDay(time));
    m_upower.change(batteryPath,
                    {{u"Percentage"_s, percent}, {u"UpdateTime"_s, qulonglong(then.toSecsSinceEpoch())}});
}

void NightBed::plugIn(const char *time)
{
    moveTo(time);
    isRecorded([this] { m_upower.change(mainsPath, {{u"Online"_s, true}}); });
}

QString NightBed::list() const
{
    await([this] { return records("settled IS NULL") == 0; });
    return run({u"list"_s});
}

QString NightBed::run(const QStringList &arguments) const
{
    QProcess program;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char *folder : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        variables.insert(QString::fromLatin1(folder), path("home"));
    variables.insert(u"TZ"_s, u"Europe/Berlin"_s);
    program.setProcessEnvironment(variables);
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QStringLiteral(LULLWATCH), arguments);
    await([&] { return program.state() == QProcess::NotRunning; }); // meanwhile the agent serves it
    return QString::fromUtf8(program.readAllStandardOutput());
}

/// Writes the accounting file's next record, and answers it.
QByteArray NightBed::account(short type, const char *user) const
{
    const QByteArray bytes = accountingRecord(type, user, seconds());
    writeFile(path("wtmp"), bytes, QIODevice::Append);
    return bytes;
}

bool NightBed::hasReadPast() const
{
    const QByteArray start =
        QByteArray::number(std::llround(m_clock->now().timeIntervalSinceReferenceDate() * 1e6));
    return records("key = 'journal' AND value = '" + start + "'", "settings") > 0;
}

/// How much the agent's file holds that is like that.
int NightBed::records(const QByteArray &condition, const char *table) const
{
    sqlite3 *database = nullptr;
    sqlite3_stmt *statement = nullptr;
    const QByteArray sql = QByteArray("SELECT COUNT(*) FROM ") + table + " WHERE " + condition;
    sqlite3_open(QFile::encodeName(m_options.database).constData(), &database);
    sqlite3_prepare_v2(database, sql.constData(), -1, &statement, nullptr);
    const int count = sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int(statement, 0) : 0;
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return count;
}

/// Returns when the agent has recorded something of it.
void NightBed::isRecorded(const std::function<void()> &what) const
{
    const int before = records("1");
    what();
    await([&] { return records("1") > before; });
}
