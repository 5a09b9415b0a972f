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

#define RVK_DECLARE_VARIANT(isa)         \
    namespace isa {                      \
    extern const Entry column[];         \
    extern const Entry internalColumn[]; \
    extern const Entry kernels[];        \
    }
#define RVK_VARIANT(isa) #isa, isa::column, isa::internalColumn, isa::kernels

// The features asked for are those of the compiler flags in cmake/RavikVecta.cmake.
#if defined(__x86_64__)

RVK_DECLARE_VARIANT(sse42)
RVK_DECLARE_VARIANT(avx2)
RVK_DECLARE_VARIANT(avx512)

const Variant* variants(uint32_t& count)
{
    const bool hasSse42 = __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt");
    const bool hasAvx2 = hasSse42 && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi");
    const bool hasAvx512 = hasAvx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512cd") &&
                           __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
                           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
                           __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512vpopcntdq") &&
                           __builtin_cpu_supports("avx512bitalg");
    static const Variant all[] = {
        {RVK_VARIANT(sse42), hasSse42},
        {RVK_VARIANT(avx2), hasAvx2},
        {RVK_VARIANT(avx512), hasAvx512},
    };
    count = std::size(all);
    return all;
}

#elif defined(__arm__) || defined(__aarch64__)

RVK_DECLARE_VARIANT(neon)

const Variant* variants(uint32_t& count)
{
#if defined(__arm__)
    constexpr unsigned long neonBit = 1ul << 12; // HWCAP_NEON
    const bool hasNeon = getauxval(AT_HWCAP) & neonBit;
#else
    constexpr bool hasNeon = true; // part of the architecture
#endif
    static const Variant all[] = {{RVK_VARIANT(neon), hasNeon}};
    count = std::size(all);
    return all;
}

#else

const Variant* variants(uint32_t& count)
{
    count = 0;
    return nullptr;
}

#endif

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
