// How an operation mode fills the dispatch state.
#pragma once

#include "manager.h"

#include <ravik/types.h>

namespace rvk {

// Write every C reference, or every vector implementation and the C reference where there is none, into column
// `target`.
void uCTable(Cell* table, Cell* internalTable, uint32_t target);
void uVTable(Cell* table, Cell* internalTable, uint32_t target);

// Sets the target of each function that has a vector implementation to VECTA.
void uVIndex(Target* targets, Target* internalTargets);

// Asks the companion library for an implementation of each function; those that it has become `target`.
void uR(rvkOperationMode mode, RVK_FUNC_MANAGER* manager, uint32_t target);

// Hands the manager to the companion library, so that it can fill the tables itself.
void rvkTableHWInitRemote(RVK_FUNC_MANAGER* manager, rvkOperationMode mode);

} // namespace rvk
