// How a public function reaches its implementation. Every entry is the same few steps:
//
//     srcStride = packedIfZero(srcStride, srcWidth);
//     const RVK_IMPL target = chooseTarget(
//         Slot::rvkX, [&] { return aligned(8, src, dst, srcStride) && enoughWork(srcWidth, srcHeight); });
//     RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth));
//     implementation<Slot::rvkX>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
//
// From four entries that would be equal up they share a body in entry/bodies.h.
#pragma once

#include "functions.h"
#include "log.h"

#include <atomic>
#include <cstdint>

namespace rvk {

// A cell of a function table: any implementation, stored without its type. implementation() below is the only way back.
using Cell = void (*)();

// For the reference column of the lists: the reference of a row as a cell, or an empty cell. Unlike eraseType() the
// loader can fill a table with it.
#define RVK_REFERENCE_YES(name) reinterpret_cast<::rvk::Cell>(&name##C)
#define RVK_REFERENCE_NO(name) nullptr

template <class Function>
Cell eraseType(Function* function)
{
    return reinterpret_cast<Cell>(function);
}

// A function's current RVK_IMPL. Dispatch reads it relaxed, which costs what a plain word does.
using Target = std::atomic<uint32_t>;
static_assert(sizeof(Target) == sizeof(uint32_t) && Target::is_always_lock_free, "the companion library sees words");

// Everything that a dispatch reads. rvkSetOperationMode writes it; dispatch only reads, without locks.
struct DispatchState
{
    Target targets[kPublicFunctions];
    uint32_t modeMarks[kPublicFunctions]; // bit 0 once a mode has been set; the frame itself does not read it
    Target internalTargets[kInternalFunctions];
    Cell table[kPublicFunctions * kTargets]; // entry: slot * kTargets + target
    Cell internalTable[kInternalFunctions * kTargets];
    uint8_t tablesInitialised;
    uint8_t offloadForced; // skips the rules that keep small or misaligned work off the DSP
    // Every dispatch logs its target. Set by rvkAvailableHardware, too, which may run during dispatch.
    std::atomic<uint8_t> runtimeLog;
    uint8_t noAccelerator; // the device is known to have neither a usable DSP nor GPU
};
extern DispatchState dispatchState;

const char* nameOf(Slot slot);
const char* nameOf(InternalSlot slot);

// No table has a target above the last: memory is corrupt.
inline uint32_t checkedTarget(const Target& current)
{
    const uint32_t target = current.load(std::memory_order_relaxed);
    if (target > RVK_IMPL_MDSP)
        __builtin_trap();
    return target;
}

inline bool isDspTarget(uint32_t target)
{
    constexpr uint32_t dspTargets =
        1u << RVK_IMPL_NDSP | 1u << RVK_IMPL_ADSP | 1u << RVK_IMPL_CDSP | 1u << RVK_IMPL_MDSP;
    return (dspTargets >> target) & 1u;
}

// The function's current target. While it is a DSP target, `dspCanRun()` says whether this call suits the DSP: sizes,
// pointers and strides; otherwise the call falls back to VECTA. `gpuCanRun()` says the same for the GPU.
template <class DspRule, class GpuRule>
RVK_IMPL chooseTarget(Slot slot, DspRule dspCanRun, GpuRule gpuCanRun)
{
    uint32_t target = checkedTarget(dispatchState.targets[static_cast<uint32_t>(slot)]);
    if (target == RVK_IMPL_GPU && !gpuCanRun())
        target = RVK_IMPL_VECTA;
    if (isDspTarget(target) && !dispatchState.offloadForced && !dspCanRun())
        target = RVK_IMPL_VECTA;
    if (dispatchState.runtimeLog.load(std::memory_order_relaxed)) [[unlikely]]
        logChosenTarget(nameOf(slot), static_cast<RVK_IMPL>(target));
    return static_cast<RVK_IMPL>(target);
}

template <class DspRule>
RVK_IMPL chooseTarget(Slot slot, DspRule dspCanRun)
{
    return chooseTarget(slot, dspCanRun, [] { return true; });
}

inline RVK_IMPL chooseTarget(Slot slot)
{
    return chooseTarget(slot, [] { return true; });
}

// The implementation of a function on a target, typed by its reference.
template <Slot slot>
typename SignatureOf<slot>::Type implementation(RVK_IMPL target)
{
    return reinterpret_cast<typename SignatureOf<slot>::Type>(
        dispatchState.table[static_cast<uint32_t>(slot) * kTargets + target]);
}

// The implementation of an internal operation on its current target.
template <InternalSlot slot>
typename SignatureOf<slot>::Type internalImplementation()
{
    constexpr uint32_t row = static_cast<uint32_t>(slot);
    const uint32_t target = checkedTarget(dispatchState.internalTargets[row]);
    if (dispatchState.runtimeLog.load(std::memory_order_relaxed)) [[unlikely]]
        logChosenTarget(nameOf(slot), static_cast<RVK_IMPL>(target));
    return reinterpret_cast<typename SignatureOf<slot>::Type>(dispatchState.internalTable[row * kTargets + target]);
}

// The bytes of `width` pixels. Sizes are multiplied here, because products of uint32_t wrap, and so do those of size_t
// on a 32-bit target.
inline uint64_t rowSize(uint32_t width, uint32_t pixelSize)
{
    return uint64_t{width} * pixelSize;
}

// Whether a row has a size that 32 bits hold.
inline bool rowFits(uint32_t width, uint32_t pixelSize)
{
    return rowSize(width, pixelSize) <= UINT32_MAX;
}

// A stride of 0 means packed rows: `width` pixels of `pixelSize` bytes. A size that does not fit becomes one that is
// too short for its row, and so the check of the stride refuses it.
inline uint32_t packedIfZero(uint32_t stride, uint32_t width, uint32_t pixelSize = 1)
{
    if (stride != 0)
        return stride;
    return rowFits(width, pixelSize) ? static_cast<uint32_t>(rowSize(width, pixelSize)) : UINT32_MAX;
}

// Fallback rule terms: every pointer and size is a multiple of `alignment`, a power of two.
template <class T>
bool isMultipleOf(uint32_t alignment, T* pointer)
{
    return (reinterpret_cast<uintptr_t>(pointer) & (alignment - 1)) == 0;
}
inline bool isMultipleOf(uint32_t alignment, uint32_t size)
{
    return (size & (alignment - 1)) == 0;
}
template <class... Values>
bool aligned(uint32_t alignment, Values... values)
{
    return (isMultipleOf(alignment, values) && ...);
}

// Fallback rule term: below this many elements a remote call costs more than the work.
inline bool enoughWork(uint32_t width, uint32_t height, uint32_t elementsPerPixel = 1)
{
    constexpr uint64_t leastElements = 25345;
    return uint64_t{width} * height >= (leastElements + elementsPerPixel - 1) / elementsPerPixel;
}

} // namespace rvk

// Argument checks of the entries. The log names the function and quotes the condition as it is written; clang-format
// knows these macros and leaves their arguments alone. A condition that multiplies a width cannot fail by its product's
// wrapping, only hold: a check of rowFits() follows it.
#define RVK_CHECK_ARGS(...) RVK_CHECK_ARGS_OR(, __VA_ARGS__)
#define RVK_CHECK_ARGS_OR(result, ...)                           \
    do {                                                         \
        if (!(__VA_ARGS__)) {                                    \
            ::rvk::logArgumentAssertion(__func__, #__VA_ARGS__); \
            return result;                                       \
        }                                                        \
    } while (0)

// Status functions that do not log: a failed condition is RAVIK_EBADPARAM.
#define RVK_CHECK_STATUS(...)       \
    do {                            \
        if (!(__VA_ARGS__))         \
            return RAVIK_EBADPARAM; \
    } while (0)
