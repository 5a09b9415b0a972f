#include "modes.h"

#include "companion.h"
#include "hardware.h"
#include "kernels.h"
#include "vecta/column.h"

#include <ravik/frame.h>

#include <iterator>
#include <unistd.h>

namespace rvk {

namespace {

RVK_FUNC_MANAGER manager;

constexpr bool kYES = true;
constexpr bool kNO = false;

constexpr bool hasVector[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) k##vecta,
#include "functionList.inc"
#undef RVK_FUNCTION
};
constexpr bool hasInternalVector[] = {
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) k##vecta,
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
};

// Where one remote implementation goes.
struct RemoteSymbol
{
    const char* name;
    bool internal;
    uint32_t row;
};

#define RVK_REMOTE(name) {#name "R_", false, static_cast<uint32_t>(Slot::name)},
constexpr RemoteSymbol remoteSymbols[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##remote(RVK_REMOTE(name))
#include "functionList.inc"
#undef RVK_FUNCTION
    // The companion library is asked for these two a second time.
    RVK_REMOTE(rvkCornerFast10InMaskScoreu8) RVK_REMOTE(rvkCornerFast10Scoreu8)
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) \
    RVK_WHEN_##remote({#name "R_", true, static_cast<uint32_t>(InternalSlot::name)}, )
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
};
static_assert(std::size(remoteSymbols) == 406);

// Overwrites the cells of column `target` for which the instruction set in use has an implementation.
void overlay(Cell* table, const vecta::Entry* column, uint32_t target)
{
    for (const vecta::Entry* entry = column; entry->implementation; entry++)
        table[entry->slot * kTargets + target] = entry->implementation;
}

void buildTables(rvkOperationMode mode)
{
    Cell* const table = dispatchState.table;
    Cell* const internalTable = dispatchState.internalTable;
    if (!dispatchState.tablesInitialised) {
        for (const uint32_t target : {RVK_IMPL_CPU, RVK_IMPL_VECTA, RVK_IMPL_NDSP, RVK_IMPL_GPU})
            uCTable(table, internalTable, target);
        for (const uint32_t target : {RVK_IMPL_VECTA, RVK_IMPL_NDSP, RVK_IMPL_GPU})
            uVTable(table, internalTable, target);
        manager = {
            .publicTargets = dispatchState.targets,
            .publicFunctions = kPublicFunctions,
            .publicTable = table,
            .internalTargets = dispatchState.internalTargets,
            .internalFunctions = kInternalFunctions,
            .internalTable = internalTable,
            .targetsPerRow = kTargets,
        };
    } else {
        uVTable(table, internalTable, RVK_IMPL_NDSP); // undoes what the companion library installed for the last mode
    }
    if (!isCpuOnly(mode))
        rvkTableHWInitRemote(&manager, mode);
    dispatchState.tablesInitialised = 1;
}

void preferVectors()
{
    installVectorKernels();
    uVIndex(dispatchState.targets, dispatchState.internalTargets);
}

int assignExpertTargets(rvkOperationMode mode)
{
    const uint32_t unit = expertUnit(mode);
    if (unit == RAVIK_UNIT_ARM)
        return 0;
    preferVectors();
    switch (unit) {
    case 1:
    case RAVIK_UNIT_VECTA:
        return 0;
    case RAVIK_UNIT_NDSP:
    case RAVIK_UNIT_NDSP_TEST:
        dispatchState.offloadForced = 1;
        uR(mode, &manager, RVK_IMPL_NDSP);
        return 0;
    case RAVIK_UNIT_GPU:
        uR(mode, &manager, RVK_IMPL_GPU);
        return 0;
    default:
        return -1;
    }
}

int assignTargets(rvkOperationMode mode)
{
    if (isExpert(mode))
        return assignExpertTargets(mode);
    if (mode > RAVIK_OP_CPU_PERFORMANCE)
        return 0; // everything stays on the C reference
    preferVectors();
    if (mode != RAVIK_OP_CPU_PERFORMANCE)
        uR(mode, &manager, RVK_IMPL_NDSP);
    return 0;
}

} // namespace

void uCTable(Cell* table, Cell* internalTable, uint32_t target)
{
    static const Cell references[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_REFERENCE_##reference(name),
#include "functionList.inc"
#undef RVK_FUNCTION
    };
    static const Cell internalReferences[] = {
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_REFERENCE_##reference(name),
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
    };
    for (uint32_t row = 0; row < kPublicFunctions; row++)
        table[row * kTargets + target] = references[row];
    for (uint32_t row = 0; row < kInternalFunctions; row++)
        internalTable[row * kTargets + target] = internalReferences[row];
}

void uVTable(Cell* table, Cell* internalTable, uint32_t target)
{
    uCTable(table, internalTable, target);
    if (const vecta::Variant* variant = vecta::chosenVariant()) {
        overlay(table, variant->column, target);
        overlay(internalTable, variant->internalColumn, target);
    }
}

void uVIndex(Target* targets, Target* internalTargets)
{
    for (uint32_t row = 0; row < kPublicFunctions; row++) {
        if (hasVector[row])
            targets[row].store(RVK_IMPL_VECTA, std::memory_order_relaxed);
    }
    for (uint32_t row = 0; row < kInternalFunctions; row++) {
        if (hasInternalVector[row])
            internalTargets[row].store(RVK_IMPL_VECTA, std::memory_order_relaxed);
    }
}

void uR(rvkOperationMode mode, RVK_FUNC_MANAGER* tables, uint32_t target)
{
    Companion companion;
    if (!companion)
        return;
    if (auto* initialise = companion.function<void(rvkOperationMode)>("rvkInitRemoteLib"))
        initialise(mode);
    else
        logLibraryError("Error: uR pInitFn NULL. %s", Companion::loaderError());

    for (const RemoteSymbol& symbol : remoteSymbols) {
        const Cell implementation = companion.functionInWord<void()>(symbol.name);
        if (!implementation)
            continue;
        Target* const targets = symbol.internal ? tables->internalTargets : tables->publicTargets;
        targets[symbol.row].store(target, std::memory_order_relaxed);
        (symbol.internal ? tables->internalTable : tables->publicTable)[symbol.row * kTargets + target] =
            implementation;
    }
    companion.keepIn(companionSession.library);
}

namespace {

// Lets the companion library fill one column.
void fillByCompanion(const Companion& companion, const char* filler, RVK_FUNC_MANAGER* tables, uint32_t target)
{
    if (auto* fill = companion.function<void(RVK_FUNC_MANAGER*, uint32_t)>(filler))
        fill(tables, target);
    else
        logLibraryError("pTableFn %s %p %s", filler, static_cast<void*>(nullptr), Companion::loaderError());
}

} // namespace

void rvkTableHWInitRemote(RVK_FUNC_MANAGER* tables, rvkOperationMode mode)
{
    const uint32_t units = rvkAvailableHardware(mode);
    const Companion companion;
    if (!companion)
        return;
    if (auto* initialise = companion.function<void(RVK_FUNC_MANAGER*)>("rvkInitializeMasterFuncManager"))
        initialise(tables);
    else
        logLibraryError("prvkInitializeMasterFuncManagerFn NULL %s\n", Companion::loaderError());
    if (units & RAVIK_UNIT_NDSP)
        fillByCompanion(companion, "uQTable", tables, RVK_IMPL_NDSP);
    if (units & RAVIK_UNIT_GPU)
        fillByCompanion(companion, "uGTable", tables, RVK_IMPL_GPU);
}

} // namespace rvk

int rvkSetOperationMode(rvkOperationMode mode)
{
    using namespace rvk;
    for (uint32_t& mark : dispatchState.modeMarks)
        mark |= 1;
    detectCpuOnce();
    if (dispatchState.noAccelerator && static_cast<uint32_t>(mode) != (RAVIK_OP_EXPERT | RAVIK_UNIT_ARM)) {
        logLibraryError("%s\n", "DSP and GPU not present. Setting RAVIK mode to RAVIK_OP_CPU_PERFORMANCE.");
        mode = RAVIK_OP_CPU_PERFORMANCE;
    }
    dispatchState.offloadForced = 0;
    if (sysconf(_SC_NPROCESSORS_ONLN) < 0)
        logLibraryError("Error in getting the number of available processor");
    readRuntimeLogProperty();
    rvkAvailableHardware(mode);
    buildTables(mode);
    installReferenceKernels();
    for (Target& target : dispatchState.targets)
        target.store(RVK_IMPL_CPU, std::memory_order_relaxed);
    for (Target& target : dispatchState.internalTargets)
        target.store(RVK_IMPL_CPU, std::memory_order_relaxed);
    return assignTargets(mode);
}
