#pragma once

#include <QtGlobal>

#include <cerrno>
#include <cstddef>

#include <sys/types.h>
#include <unistd.h>

/// What the system's own calls for files want to have around them.
namespace ZELKPosixFile {

constexpr mode_t usualMode = 0666; ///< less what the user's mask takes away

/// Calls `write` with what is left and how much is not, until there is nothing left; answers how much was
/// written, which is less only after an error.
template <typename Write>
qint64 writeAll(const char *data, qint64 size, const Write &write)
{
    qint64 done = 0;
    while (done < size) {
        const ssize_t count = write(data + done, std::size_t(size - done), done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0)
            errno = EIO; // it says nothing, and takes nothing
        if (count <= 0)
            break;
        done += count;
    }
    return done;
}

/// Until the device has it all. What can be written to and not waited for needs no waiting.
inline bool synchronise(int file)
{
    return ::fdatasync(file) == 0 || errno == EINVAL || errno == EROFS;
}

} // namespace ZELKPosixFile
