// SPDX-License-Identifier: Apache-2.0
// Loaded into the simulator, which ends by the signal that it was sent and so past every exit handler: the look for leaks
// comes ahead of that.
#include <csignal>
#include <sanitizer/lsan_interface.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" int raise(int iSignal) noexcept
{
    (void)__lsan_do_recoverable_leak_check();
    return static_cast<int>(syscall(SYS_tgkill, getpid(), gettid(), iSignal));
}
