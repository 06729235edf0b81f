#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/CrashTraps.h"
#include "tests/crash/Deaths.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>

namespace orbelantine::test {

namespace {

/// What glibc finds only while it holds the heap's lock.
[[gnu::noinline]] void breakHeap() {
    constexpr std::size_t kSmall = 24;
    volatile std::size_t beyond = 0x1000;
    auto* volatile piece = static_cast<char*>(std::malloc(kSmall));
    std::memset(piece, 0x41, beyond);
    void* volatile next = std::malloc(0x8000);
    (void)next;
}

[[gnu::noinline]] void loseStack() {
    asm volatile("mov $64, %rsp\n push %rax");
}

int statusOfChild(void (*run)()) {
    const pid_t child = fork();
    if (child == 0) {
        // One that hangs ends all the same.
        (void)alarm(10);
        run();
        std::_Exit(0);
    }
    int status = 0;
    (void)waitpid(child, &status, 0);
    return status;
}

/// A child has the handler, but nobody who records.
void inChild() {
    const int crashed = statusOfChild([] { (void)raise(SIGSEGV); });
    const int unset = statusOfChild([] { crashHandler()->UnsetHandler(); });
    std::_Exit(WIFSIGNALED(crashed) && WTERMSIG(crashed) == SIGSEGV && unset == 0 ? 0 : 1);
}

/// Not a byte is left, for the recorder neither.
void useUpMemory() noexcept {
    const rlimit limit{0, 0};
    (void)setrlimit(RLIMIT_AS, &limit);
    for (std::size_t size = 1 << 20; size > 0; size /= 2)
        while (std::malloc(size) != nullptr) {
        }
    (void)::operator new(16);
}

void installHostHandler() {
    (void)std::signal(SIGSEGV, [](int) { _exit(42); });
}

constexpr Death kLinuxDeaths[] = {
    {"broken_heap", breakHeap},
    {"lost_stack", loseStack},
    {"in_child", inChild},
    {"used_up_memory", useUpMemory},
    {"host_handler", writeNowhere, installHostHandler},
    {"full_disk", writeNowhere},
};

} // namespace

std::span<const Death> platformDeaths() {
    return kLinuxDeaths;
}

void useTemporaryFolder(const char* folder) {
    (void)setenv("TMPDIR", folder, 1);
}

} // namespace orbelantine::test
