// The VECTA column of one instruction set.
#include "vecta/column.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {

const Entry column[] = {
#define RVK_FUNCTION(name, reference, vecta, remote)                                                                           \
    RVK_WHEN_##vecta({static_cast<uint32_t>(Slot::name), reinterpret_cast<void (*)()>(&name##V)},)
#include "functionList.inc"
#undef RVK_FUNCTION
    {kPublicFunctions, nullptr}, // the end
};

} // namespace rvk::vecta::RVK_ISA
