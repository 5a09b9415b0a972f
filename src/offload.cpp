#include "offload.h"

#include "dispatch.h"

namespace rvk {

uint64_t probeX6TimeC(x6ProfileCommand, uint32_t)
{
    return 0;
}

int rvkRegisterBufC(const void*, uint32_t)
{
    return 0;
}

uint64_t probeX6Time(x6ProfileCommand command, uint32_t argument)
{
    return internalImplementation<InternalSlot::probeX6Time>()(command, argument);
}

int rvkRegisterBuf(const void* data, uint32_t size)
{
    return internalImplementation<InternalSlot::rvkRegisterBuf>()(data, size);
}

} // namespace rvk
