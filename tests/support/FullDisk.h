#pragma once

#include <csignal>

#include <sys/resource.h>

/// Lets no file of this process grow beyond a size, as a full disk would, for as long as it lives.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes = 0)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit full{bytes, former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &former); }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit former{};
};
