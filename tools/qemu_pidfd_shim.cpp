// Preloaded into the tests of a cross build that run under qemu-user (see cmake/TpalletCross.cmake).
// Qt's QProcess asks the kernel whether it has pidfds (waitid(P_PIDFD) failing with EBADF means
// yes) and then starts children with clone(CLONE_PIDFD). The kernel answers the question, but
// qemu-user before 8.0 refuses that clone flag, so no child process would ever start. Answering
// the question "no" here makes Qt start children with a plain fork, which qemu emulates.
#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <sys/syscall.h>

namespace {

constexpr long kPidfdIdType = 3; // P_PIDFD

using SyscallFn = long (*)(long, ...);

SyscallFn realSyscall()
{
    static const auto fn = reinterpret_cast<SyscallFn>(dlsym(RTLD_NEXT, "syscall"));
    return fn;
}

} // namespace

extern "C" __attribute__((visibility("default"))) long syscall(long number, ...)
{
    // Every Linux system call takes at most six integer-sized arguments.
    long a[6];
    va_list ap;
    va_start(ap, number);
    for (long &arg : a)
        arg = va_arg(ap, long);
    va_end(ap);
    if (number == SYS_waitid && a[0] == kPidfdIdType) {
        errno = EINVAL;
        return -1;
    }
    return realSyscall()(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}
