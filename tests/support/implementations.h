// The reference and the vector implementations of a function.
#pragma once

#include "dispatch.h"
#include "vecta/column.h"

#include <gtest/gtest.h>

#include <vector>

namespace test {

using namespace rvk;

struct NamedCell
{
    const char* name;
    Cell cell;
};

inline bool isListedAsVecta(uint32_t slot)
{
    static constexpr bool listed[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(true ||) false,
#include "functionList.inc"
#undef RVK_FUNCTION
    };
    return listed[slot];
}

// The vector implementations that this machine runs, with the names of their instruction sets.
inline std::vector<NamedCell> vectaCellsOf(uint32_t slot)
{
    std::vector<NamedCell> cells;
    uint32_t count = 0;
    const vecta::Variant* variants = vecta::variants(count);
    for (uint32_t i = 0; i < count; ++i)
        for (const vecta::Entry* e = variants[i].column; variants[i].runsHere && e->implementation; ++e)
            if (e->slot == slot)
                cells.push_back({variants[i].name, e->implementation});
    EXPECT_EQ(cells.empty(), !isListedAsVecta(slot)) << nameOf(static_cast<Slot>(slot));
    return cells;
}

// Runs `check(name, function)` for each of them.
template <Slot slot, class Check>
void forEachVecta(Check check)
{
    for (const NamedCell& vecta : vectaCellsOf(static_cast<uint32_t>(slot)))
        check(vecta.name, reinterpret_cast<typename SignatureOf<slot>::Type>(vecta.cell));
}

template <Slot slot>
typename SignatureOf<slot>::Type referenceOf()
{
    return implementation<slot>(RVK_IMPL_CPU);
}

// The same for the reference, too.
template <Slot slot, class Check>
void forEachImplementation(Check check)
{
    check("C", referenceOf<slot>());
    forEachVecta<slot>(check);
}

} // namespace test
