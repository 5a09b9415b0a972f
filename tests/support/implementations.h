// The reference and every vector implementation alike.
#pragma once

#include "trial.h"

namespace test {

// Runs `check(name, function)` for each.
template <Slot slot, class Check>
void forEachImplementation(Check check)
{
    check("C", referenceOf<slot>());
    forEachVecta<slot>(check);
}

} // namespace test
