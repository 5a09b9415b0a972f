// The columns of one instruction set.
#include "vecta/column.h"

#include "functions.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {

#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(decltype(::name) name##V;)
#include "functionList.inc"
#undef RVK_FUNCTION
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(decltype(rvk::name) name##V;)
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
#define RVK_KERNEL(name, reference, vecta) RVK_WHEN_##vecta(decltype(rvk::name##C) name##V;)
#include "kernelList.inc"
#undef RVK_KERNEL

extern const Entry column[];
extern const Entry internalColumn[];
extern const Entry kernels[];

#define RVK_ENTRY(row, name) {static_cast<uint32_t>(row), reinterpret_cast<void (*)()>(&name##V)},

const Entry column[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(RVK_ENTRY(Slot::name, name))
#include "functionList.inc"
#undef RVK_FUNCTION
    {kPublicFunctions, nullptr},
};

const Entry internalColumn[] = {
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(RVK_ENTRY(InternalSlot::name, name))
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
    {kInternalFunctions, nullptr},
};

const Entry kernels[] = {
#define RVK_KERNEL(name, reference, vecta) RVK_WHEN_##vecta(RVK_ENTRY(Kernel::name, name))
#include "kernelList.inc"
#undef RVK_KERNEL
    {kKernels, nullptr},
};

} // namespace rvk::vecta::RVK_ISA
