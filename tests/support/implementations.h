// The reference and the vector implementations of a function.
#pragma once

#include "dispatch.h"
#include "vecta/column.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

namespace test {

using namespace rvk;

struct NamedCell
{
    const char* name;
    Cell cell;
};

inline bool isListedAsVecta(Slot slot)
{
    static constexpr bool listed[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(true ||) false,
#include "functionList.inc"
#undef RVK_FUNCTION
    };
    return listed[static_cast<uint32_t>(slot)];
}
inline bool isListedAsVecta(InternalSlot slot)
{
    static constexpr bool listed[] = {
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(true ||) false,
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
    };
    return listed[static_cast<uint32_t>(slot)];
}

// The vector implementations that this machine runs, with the names of their instruction sets, of a row of either list.
template <class AnySlot>
std::vector<NamedCell> vectaCellsOf(AnySlot slot)
{
    std::vector<NamedCell> cells;
    uint32_t count = 0;
    const vecta::Variant* variants = vecta::variants(count);
    for (uint32_t i = 0; i < count; ++i) {
        constexpr bool isPublic = std::is_same_v<AnySlot, Slot>;
        const vecta::Entry* e = isPublic ? variants[i].column : variants[i].internalColumn;
        for (; variants[i].runsHere && e->implementation; ++e)
            if (e->slot == static_cast<uint32_t>(slot))
                cells.push_back({variants[i].name, e->implementation});
    }
    EXPECT_EQ(cells.empty(), !isListedAsVecta(slot)) << nameOf(slot);
    return cells;
}

inline Cell referenceCellOf(Slot slot)
{
    return dispatchState.table[static_cast<uint32_t>(slot) * kTargets];
}
inline Cell referenceCellOf(InternalSlot slot)
{
    return dispatchState.internalTable[static_cast<uint32_t>(slot) * kTargets];
}

// Runs `check(name, function)` for each of them.
template <auto slot, class Check>
void forEachVecta(Check check)
{
    for (const NamedCell& vecta : vectaCellsOf(slot))
        check(vecta.name, reinterpret_cast<typename SignatureOf<slot>::Type>(vecta.cell));
}

template <auto slot>
typename SignatureOf<slot>::Type referenceOf()
{
    return reinterpret_cast<typename SignatureOf<slot>::Type>(referenceCellOf(slot));
}

// The same for the reference, too.
template <auto slot, class Check>
void forEachImplementation(Check check)
{
    check("C", referenceOf<slot>());
    forEachVecta<slot>(check);
}

} // namespace test
