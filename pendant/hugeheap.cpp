#include "hugeheap.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(Q_OS_LINUX) && defined(__GLIBC__)
#include <gnu/libc-version.h>
#include <unistd.h>
#define HUGEHEAP_GLIBC 1
#endif

// Loading a hundred full pallets or reading an exchange file of twenty makes tens of megabytes of
// small blocks. Every fresh 4 KiB page the allocator hands out is a page fault, and on the virtual
// machines the pendant also runs on those faults cost more than the parsing itself; 2 MiB pages
// take five hundred times fewer.

namespace hugeheap {

namespace {

constexpr char kTunable[] = "glibc.malloc.hugetlb=";

#ifdef HUGEHEAP_GLIBC
// The allocator reads this tunable from glibc 2.35 on.
bool libraryCan()
{
    int major = 0;
    int minor = 0;
    return std::sscanf(gnu_get_libc_version(), "%d.%d", &major, &minor) == 2 && (major > 2 || (major == 2 && minor >= 35));
}

// "always" or "madvise" (the allocator asks for each region); not "never".
bool kernelCan()
{
    std::FILE *f = std::fopen("/sys/kernel/mm/transparent_hugepage/enabled", "r");
    if (!f)
        return false;
    char mode[128] = {};
    const bool read = std::fgets(mode, sizeof mode, f) != nullptr;
    std::fclose(f);
    return read && std::strstr(mode, "[never]") == nullptr;
}
#endif

} // namespace

bool active()
{
    const char *tunables = std::getenv("GLIBC_TUNABLES");
    const char *at = tunables ? std::strstr(tunables, kTunable) : nullptr;
    return at && at[sizeof kTunable - 1] == '1';
}

void restartWithHugePages(char *argv[])
{
#if defined(HUGEHEAP_GLIBC) && !defined(__SANITIZE_ADDRESS__)
    const char *wanted = std::getenv("TPALLET_HUGE_HEAP");
    if (wanted && std::strcmp(wanted, "0") == 0)
        return;
    const char *tunables = std::getenv("GLIBC_TUNABLES");
    // Set already, by us before the restart or by whoever started us: never restart twice.
    if (tunables && std::strstr(tunables, kTunable))
        return;
    if (!libraryCan() || !kernelCan())
        return;
    const size_t length = (tunables ? std::strlen(tunables) + 1 : 0) + sizeof kTunable + 1;
    char *value = static_cast<char *>(std::malloc(length));
    if (!value)
        return;
    std::snprintf(value, length, "%s%s%s1", tunables ? tunables : "", tunables ? ":" : "", kTunable);
    const bool set = setenv("GLIBC_TUNABLES", value, 1) == 0;
    std::free(value);
    if (set)
        execv("/proc/self/exe", argv);
    // No restart: run on as we are, the setting only costs speed.
#else
    Q_UNUSED(argv)
#endif
}

} // namespace hugeheap
