#include "ZELKIdleMemory.h"

#include "ZELKAssertion.h"

#include <cstddef>
#include <cstdint>
#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace {

/// By a sanitizer, which has pages of its own.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool isWatched = true;
#elif defined(__has_feature)
constexpr bool isWatched = __has_feature(address_sanitizer);
#else
constexpr bool isWatched = false;
#endif

/// The loader tells places as numbers.
void *placeOf(std::uintptr_t address)
{
    return reinterpret_cast<void *>(address); // NOLINT(performance-no-int-to-ptr)
}

/// Its code was changed when it was loaded, so that the file does not have it.
bool isRelocatedInPlace(const dl_phdr_info &object)
{
    for (int i = 0; i < object.dlpi_phnum; ++i) {
        if (object.dlpi_phdr[i].p_type != PT_DYNAMIC)
            continue;
        const auto *entry =
            static_cast<const ElfW(Dyn) *>(placeOf(object.dlpi_addr + object.dlpi_phdr[i].p_vaddr));
        for (; entry->d_tag != DT_NULL; ++entry)
            if (entry->d_tag == DT_TEXTREL || (entry->d_tag == DT_FLAGS && (entry->d_un.d_val & DF_TEXTREL)))
                return true;
    }
    return false;
}

/// What is loaded from a file and can not be written to is the same there. What the system refuses stays.
void dropCleanPages(const dl_phdr_info &object)
{
    const auto page = std::uintptr_t(sysconf(_SC_PAGESIZE));
    for (int i = 0; i < object.dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = object.dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W))
            continue;
        const std::uintptr_t first = (object.dlpi_addr + segment.p_vaddr) & ~(page - 1);
        const std::uintptr_t end = object.dlpi_addr + segment.p_vaddr + segment.p_memsz;
        madvise(placeOf(first), end - first, MADV_DONTNEED); // to the end of the last page
    }
}

} // namespace

ZELKIdleMemory::ZELKIdleMemory(std::function<bool()> isQuiet, QObject *parent)
    : QObject(parent)
    , m_isQuiet(std::move(isQuiet))
{
    m_turn.setSingleShot(true);
    m_turn.setInterval(0); // when what is waiting has been dealt with
    connect(&m_turn, &QTimer::timeout, this, [this] {
        zelkGuard([this] {
            if (!m_isQuiet())
                return;
            giveBack();
            Q_EMIT gaveBack();
        });
    });
}

void ZELKIdleMemory::workDidEnd()
{
    if (!m_turn.isActive())
        m_turn.start();
}

void ZELKIdleMemory::giveBack()
{
    if constexpr (isWatched)
        return;
    malloc_trim(0);
    dl_iterate_phdr(
        [](dl_phdr_info *object, std::size_t, void *) {
            if (!isRelocatedInPlace(*object))
                dropCleanPages(*object);
            return 0;
        },
        nullptr);
}
