#include "instructionCount.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace bench {
namespace {

int countFile = -1;

// The plugin answers a system call with these arguments by writing its count. To the kernel it is a wrong descriptor.
uint64_t instructionsSoFar()
{
    syscall(SYS_close, 0x7256414b, 0x636f756e, 0x74496e73);
    uint64_t count = 0;
    return pread(countFile, &count, sizeof count, 0) == sizeof count ? count : 0;
}

} // namespace

bool openInstructionCount(const char* path)
{
    countFile = open(path, O_RDONLY | O_CLOEXEC);
    return countFile >= 0 && instructionsSoFar() > 0;
}

uint64_t executedInstructions(void (*work)(const void*), const void* context)
{
    const uint64_t start = instructionsSoFar();
    work(context);
    const uint64_t once = instructionsSoFar();
    work(context);
    work(context);
    const uint64_t twice = instructionsSoFar();
    return (twice - once) - (once - start);
}

} // namespace bench
