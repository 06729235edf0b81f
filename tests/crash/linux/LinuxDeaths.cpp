#include "tests/crash/Deaths.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

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

void inChild() {
    const pid_t child = fork();
    if (child == 0) {
        (void)raise(SIGSEGV);
        std::_Exit(1);
    }
    int status = 0;
    (void)waitpid(child, &status, 0);
    std::_Exit(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV ? 0 : 1);
}

void installHostHandler() {
    (void)std::signal(SIGSEGV, [](int) { _exit(42); });
}

constexpr Death kLinuxDeaths[] = {
    {"broken_heap", breakHeap},  {"lost_stack", loseStack},
    {"in_child", inChild},       {"host_handler", writeNowhere, installHostHandler},
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
