#pragma once

#include <QStringList>

/// The side of the journal's reading that may crash: libsystemd ends its process on some damaged files, and a
/// file that shrinks under its reader ends it too. So a process is made for each file, which reads it, writes
/// what it finds to its standard output and ends.
///
/// Each mark is a line of ZELKSleepMark, written at once; a file that is damaged or can not be read gives a
/// line "fault REASON" after what could be read.
namespace ZELKJournalReader {

/// The hidden option of the agent's program that calls run() with what follows it: paths, and before them
/// perhaps sinceOption.
inline constexpr const char *option = "--read-journal";
/// With microseconds since 1970 after it: what is dated before need not be read.
inline constexpr const char *sinceOption = "--since=";

/// What a program started with the option is to do, and its exit status. It runs at a low priority, ends with
/// its parent, and leaves no core behind.
int run(const QStringList &arguments);

} // namespace ZELKJournalReader
