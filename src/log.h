// What the library writes to the log, and the two kinds of assertion.
#pragma once

#include <ravik/types.h>

namespace rvk {

// Under "ravik_lib_log" at error priority.
void logLibraryError(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Under "ravik_lib_log" at debug priority.
void logLibraryWarning(const char* format, ...) __attribute__((format(printf, 1, 2)));
// "%s_%s" under "ravik_runtime_log" at error priority.
void logChosenTarget(const char* function, RVK_IMPL target);

// Sets dispatchState.runtimeLog from the property "vendor.runtime.ravik.log": on when its decimal value is not 0.
void readRuntimeLogProperty();

// "Assertion failed @%s: %s\n": a public function was called with bad arguments.
void logArgumentAssertion(const char* function, const char* condition);

// What a function without a status has to say of the status of its work: "Error: %s - no scratch memory\n" when that is
// RAVIK_ENORES, and so nothing was done.
void logIfOutOfScratch(const char* function, rvkStatus status);

// "%s@%d: %s Assertion failed\n", then the process exits with status 1: an implementation met what must not be.
// `unit` is the source unit without extension, such as "src/cpu/ravikArithmC"; `line` a constant that stays as it is
// when the source moves.
[[noreturn]] void failInternalAssertion(const char* unit, int line, const char* condition);

} // namespace rvk
