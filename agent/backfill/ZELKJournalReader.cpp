#include "ZELKJournalReader.h"

#include "ZELKSleepHistory.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <systemd/sd-journal.h>

namespace {

constexpr std::string_view startMessage = "6bbd95ee977941e497c48be27c254128";
constexpr std::string_view stopMessage = "8811e6df2a8e40f58a94cea26f8ebf14";
constexpr std::string_view suspendEntry = "PM: suspend entry (";
constexpr std::string_view hibernationEntry = "PM: hibernation: hibernation entry";
constexpr std::string_view suspendExit = "PM: suspend exit";
constexpr long leastUrgentError = 3; // "err" of syslog
/// Longer fields, which may be unpacked for us, are cut: none of ours is as long.
constexpr std::size_t longestField = 1024;
constexpr int lowPriority = 10;

struct JournalDeleter
{
    void operator()(sd_journal *journal) const { sd_journal_close(journal); }
};
using Journal = std::unique_ptr<sd_journal, JournalDeleter>;

/// Empty when the entry has no such field; valid until the next call.
std::string_view field(sd_journal *journal, const char *name)
{
    const void *data = nullptr;
    std::size_t length = 0;
    if (sd_journal_get_data(journal, name, &data, &length) < 0)
        return {};
    const std::string_view whole(static_cast<const char *>(data), length);
    const std::size_t prefix = std::strlen(name) + 1;
    return whole.size() < prefix ? std::string_view() : whole.substr(prefix);
}

qint64 numberIn(std::string_view text, qint64 otherwise)
{
    bool ok = false;
    const qint64 number = QByteArray(text.data(), qsizetype(text.size())).toLongLong(&ok);
    return ok ? number : otherwise;
}

std::optional<ZELKSleepMark::Kind> kernelKind(std::string_view message)
{
    if (message.starts_with(suspendEntry) || message == hibernationEntry)
        return ZELKSleepMark::Kind::KernelEntry;
    if (message == suspendExit)
        return ZELKSleepMark::Kind::KernelExit;
    return std::nullopt;
}

/// Anyone may write to the journal, but nobody a user's number or the kernel's transport that is not his own.
std::optional<ZELKSleepMark::Kind> kindOf(sd_journal *journal)
{
    if (field(journal, "_TRANSPORT") == "kernel")
        return kernelKind(field(journal, "MESSAGE"));
    if (const std::string_view user = field(journal, "_UID"); !user.empty() && user != "0")
        return std::nullopt;
    const std::string_view message = field(journal, "MESSAGE_ID");
    if (message == startMessage)
        return ZELKSleepMark::Kind::Started;
    if (message != stopMessage)
        return std::nullopt;
    const bool failed = numberIn(field(journal, "PRIORITY"), leastUrgentError + 1) <= leastUrgentError;
    return failed ? ZELKSleepMark::Kind::Failed : ZELKSleepMark::Kind::Ended;
}

/// Writes the entry when it is a mark; false when it is damaged.
bool writeEntry(sd_journal *journal)
{
    const auto kind = kindOf(journal);
    if (!kind)
        return true;
    std::uint64_t realtime = 0;
    std::uint64_t monotonic = 0;
    sd_id128_t boot;
    if (sd_journal_get_realtime_usec(journal, &realtime) < 0 ||
        sd_journal_get_monotonic_usec(journal, &monotonic, &boot) < 0)
        return false;
    // A line written before the sleep may be taken in after it; its sender's time is of when it was written.
    const qint64 received = qint64(realtime);
    const qint64 sent = numberIn(field(journal, "_SOURCE_REALTIME_TIMESTAMP"), received);
    char identifier[SD_ID128_STRING_MAX];
    const QByteArray line = ZELKSleepMark{sd_id128_to_string(boot, identifier), qint64(monotonic), *kind,
                                          sent > 0 && sent < received ? sent : received}
                                .line();
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stdout);
    std::fflush(stdout);
    return true;
}

int match(sd_journal *journal)
{
    const std::string start = "MESSAGE_ID=" + std::string(startMessage);
    const std::string stop = "MESSAGE_ID=" + std::string(stopMessage);
    int result = sd_journal_add_match(journal, start.c_str(), 0);
    if (result >= 0)
        result = sd_journal_add_match(journal, stop.c_str(), 0);
    if (result >= 0)
        result = sd_journal_add_disjunction(journal);
    if (result >= 0)
        result = sd_journal_add_match(journal, "_TRANSPORT=kernel", 0);
    return result;
}

Journal opened(const QString &path, int &result)
{
    const QByteArray name = QFile::encodeName(path);
    const char *names[] = {name.constData(), nullptr};
    sd_journal *journal = nullptr;
    result = sd_journal_open_files(&journal, names, 0);
    Journal owner(journal);
    if (result >= 0)
        result = sd_journal_set_data_threshold(journal, longestField);
    if (result >= 0)
        result = match(journal);
    return owner;
}

struct Pass
{
    int result = 0; ///< negative for an error
    std::size_t entries = 0;
};

/// Which way a file is read, and from where.
struct Way
{
    int (*step)(sd_journal *);
    std::uint64_t since; ///< microseconds since 1970; 0 for all
    bool isForward;

    int seek(sd_journal *journal) const
    {
        if (!isForward)
            return sd_journal_seek_tail(journal);
        return since > 0 ? sd_journal_seek_realtime_usec(journal, since) : sd_journal_seek_head(journal);
    }
    /// Backwards, past what is wanted.
    bool isThrough(sd_journal *journal) const
    {
        std::uint64_t time = 0;
        return !isForward && since > 0 && sd_journal_get_realtime_usec(journal, &time) >= 0 && time < since;
    }
};

Pass readFile(const QString &path, const Way &way)
{
    Pass pass;
    const Journal journal = opened(path, pass.result);
    if (pass.result >= 0)
        pass.result = way.seek(journal.get());
    bool sound = true;
    while (pass.result >= 0 && (pass.result = way.step(journal.get())) > 0 && !way.isThrough(journal.get())) {
        ++pass.entries;
        sound = writeEntry(journal.get()) && sound;
    }
    if (pass.result >= 0 && !sound)
        pass.result = -EBADMSG;
    return pass;
}

/// libsystemd lets go of a file at the first damage and calls that its end. So the file is read from both
/// ends: what lies behind the damage is found, and that there is one; a mark told twice counts once. Of a
/// part of the file the two ends tell different numbers wherever the clock was set, which is no damage.
int readFile(const QString &path, std::uint64_t since)
{
    const Pass forth = readFile(path, {sd_journal_next, since, true});
    if (forth.result < 0 && forth.entries == 0)
        return forth.result;
    const Pass back = readFile(path, {sd_journal_previous, since, false});
    if (forth.result < 0 || back.result < 0)
        return std::min(forth.result, back.result);
    return since > 0 || forth.entries == back.entries ? 0 : -EBADMSG;
}

void becomeHarmless()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_DUMPABLE, 0);
    setpriority(PRIO_PROCESS, 0, lowPriority);
}

} // namespace

int ZELKJournalReader::run(const QStringList &arguments)
{
    becomeHarmless();
    const QLatin1String sinceBegins(sinceOption);
    std::uint64_t since = 0;
    for (const QString &argument : arguments)
        if (argument.startsWith(sinceBegins))
            since = argument.mid(sinceBegins.size()).toULongLong();
        else if (const int result = readFile(argument, since); result < 0)
            std::printf("fault %s\n", std::strerror(-result));
    return std::fflush(stdout) == 0 ? 0 : 1;
}
