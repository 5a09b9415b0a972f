// The dispatch state as a program finds it before any mode is set: every function runs its C reference.
#include "dispatch.h"

namespace rvk {

// The tables are filled by the loader, not by code: a function may be called from a static constructor.
#define RVK_ROW(reference) \
    reference, reference, reference, reference, nullptr, nullptr, nullptr, // CPU, VECTA, NDSP, GPU; ADSP, CDSP, MDSP

DispatchState dispatchState = {
    .targets = {},
    .modeMarks = {},
    .internalTargets = {},
    .table =
        {
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_ROW(RVK_REFERENCE_##reference(name))
#include "functionList.inc"
#undef RVK_FUNCTION
        },
    .internalTable =
        {
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_ROW(RVK_REFERENCE_##reference(name))
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
        },
    .tablesInitialised = 0,
    .offloadForced = 0,
    .runtimeLog = 0,
    .noAccelerator = 0,
};

const char* nameOf(Slot slot)
{
    static constexpr const char* names[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) #name,
#include "functionList.inc"
#undef RVK_FUNCTION
    };
    return names[static_cast<uint32_t>(slot)];
}

const char* nameOf(InternalSlot slot)
{
    static constexpr const char* names[] = {
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) #name,
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
    };
    return names[static_cast<uint32_t>(slot)];
}

} // namespace rvk
