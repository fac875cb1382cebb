#include "ZELKDesktopEntry.h"

#include <cstdint>
#include <cstdlib>

/// Any bytes are an entry or none; and whatever a word consists of, it comes out of a command as it was put
/// in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    if (const auto entry = ZELKDesktopEntry::parse(bytes)) {
        entry->command();
        entry->linkedPath();
    }
    QString word = QString::fromUtf8(bytes);
    word.removeIf([](QChar character) { return character < u' ' || character == QChar(0x7f); });
    const auto written =
        ZELKDesktopEntry::parse("[Desktop Entry]\nExec=" + ZELKDesktopEntry::quoted(word) + '\n');
    if (!written || written->command() != QStringList{word})
        std::abort();
    return 0;
}
