#pragma once

#include <csignal>

#include <sys/resource.h>

/// Files of this process cannot become larger than that while it lives.
class LargestFile
{
public:
    explicit LargestFile(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LargestFile() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    LargestFile(const LargestFile &) = delete;
    LargestFile &operator=(const LargestFile &) = delete;

private:
    rlimit m_before{};
};
