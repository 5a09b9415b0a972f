// Which instruction sets the build carries, and which of them this CPU runs.
#include "log.h"
#include "platform/platform.h"
#include "vecta/column.h"

#include <cstring>
#include <iterator>

#if defined(__arm__)
#include <sys/auxv.h>
#endif

namespace rvk::vecta {

// The list of this build, which cmake/RavikVecta.cmake makes: RVK_INSTRUCTION_SET(name), the plainest first.
#define RVK_INSTRUCTION_SET(isa)         \
    namespace isa {                      \
    extern const Entry column[];         \
    extern const Entry internalColumn[]; \
    extern const Entry kernels[];        \
    }
#include "instructionSets.inc"
#undef RVK_INSTRUCTION_SET

namespace {

// Whether this CPU has an instruction set. The features asked for are those of the compiler flags in
// cmake/RavikVecta.cmake.
struct CpuHas
{
#if defined(__x86_64__)
    static bool sse42()
    {
        return __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt");
    }
    static bool avx2()
    {
        return sse42() && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi");
    }
    static bool avx512()
    {
        return avx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512cd") &&
               __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
               __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
               __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512vnni") &&
               __builtin_cpu_supports("avx512vpopcntdq") && __builtin_cpu_supports("avx512bitalg") &&
               __builtin_cpu_supports("gfni");
    }
#elif defined(__arm__)
    static bool neon()
    {
        constexpr unsigned long neonBit = 1ul << 12; // HWCAP_NEON
        return getauxval(AT_HWCAP) & neonBit;
    }
#elif defined(__aarch64__)
    static bool neon()
    {
        return true; // part of the architecture
    }
#endif
};

} // namespace

const Variant* variants(uint32_t& count)
{
    static const Variant all[] = {
#define RVK_INSTRUCTION_SET(isa) {#isa, isa::column, isa::internalColumn, isa::kernels, CpuHas::isa()},
#include "instructionSets.inc"
#undef RVK_INSTRUCTION_SET
        {}, // some processors have none
    };
    count = std::size(all) - 1;
    return all;
}

static const Variant* choose()
{
    char cap[PROP_VALUE_MAX] = "";
    __system_property_get("vendor.runtime.ravik.vecta", cap);

    uint32_t count = 0;
    const Variant* all = variants(count);
    const Variant* best = nullptr;
    bool capKnown = cap[0] == '\0';
    for (uint32_t i = 0; i < count; i++) {
        if (all[i].runsHere)
            best = &all[i];
        if (strcmp(all[i].name, cap) == 0) {
            capKnown = true;
            break;
        }
    }
    if (!capKnown)
        logLibraryError("vendor.runtime.ravik.vecta: no instruction set \"%s\" in this build", cap);
    return best;
}

const Variant* chosenVariant()
{
    static const Variant* const chosen = choose();
    return chosen;
}

} // namespace rvk::vecta
