/* Ravik: operation modes, hardware, version and time, memory. */
#ifndef RAVIK_FRAME_H
#define RAVIK_FRAME_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Chooses the implementation of every function for `mode` and rebuilds the whole dispatch state.
 *
 * RAVIK_OP_LOW_POWER, RAVIK_OP_PERFORMANCE, RAVIK_OP_CPU_OFFLOAD: vector code where it exists, and the implementations
 * of the companion library where it is installed. RAVIK_OP_CPU_PERFORMANCE: vector code, the companion library is not
 * touched. RAVIK_OP_EXPERT | unit: everything on one unit (RAVIK_UNIT_ARM: the C reference). Values of 4 and above: the
 * C reference. Before the first call every function runs its C reference.
 *
 * Returns 0, or -1 when an expert mode names a unit that cannot be run alone.
 * Must not run concurrently with any other call into the library. */
RVK_API int rvkSetOperationMode(rvkOperationMode mode);

/* Closes the session with the companion library, if one is open. */
RVK_API void rvkCleanUp(void);

/* Returns the RAVIK_UNIT_ bits of what the device offers. The CPU is examined once per process; the companion library
 * is asked on every call, except in CPU-only modes (RAVIK_OP_CPU_PERFORMANCE, expert ARM and VECTA). Bit 4096 is set
 * when the companion's major version equals this library's. */
RVK_API uint32_t rvkAvailableHardware(rvkOperationMode mode);

/* Writes the version, "1.7.1" with its terminating zero, into `version`. When `versionLength` is below 6, zeroes
 * `versionLength` bytes instead. A null buffer is ignored. */
RVK_API void rvkGetVersion(char* version, uint32_t versionLength);

/* Wall-clock time of day in microseconds. */
RVK_API uint64_t rvkGetTime(void);

/* DSP clock as the companion library reads it; 0 without one. */
RVK_API uint64_t rvkX6GetClk(void);

/* Allocates `nBytes` bytes at a multiple of `byteAlignment`, a power of two up to 128. Returns null when memory is
 * exhausted or the alignment is unusable. Release with rvkMemFree. */
RVK_API void* rvkMemAlloc(uint32_t nBytes, uint32_t byteAlignment);

/* Releases what rvkMemAlloc returned; null is ignored. */
RVK_API void rvkMemFree(void* ptr);

/* Prepares the pool of scratch buffers that the implementations share. Counted: pair each call with rvkMemDeInit.
 * Without it every call that needs scratch memory allocates and frees it. */
RVK_API void rvkMemInit(void);

/* rvkMemInit, then grows one scratch buffer to `preAllocBytes` bytes (at most 33177600, a 3840x2160 frame of four
 * bytes). */
RVK_API void rvkMemInitPreAlloc(uint32_t preAllocBytes);

/* Undoes one rvkMemInit; the last one frees the pool. After a call that was not the last one, more calls do nothing
 * until the next rvkMemInit. */
RVK_API void rvkMemDeInit(void);

/* Heap-statistics hooks; they do nothing in this build. */
RVK_API void rvkHeapStatsInit(void);
RVK_API void rvkHeapStats(void);
RVK_API void rvkHeapStatsMalloc(void* ptr, uint32_t size);
RVK_API void rvkHeapStatsFree(void* ptr);

RVK_EXTERN_C_END

#endif
