// Executed instructions, from the counting plugin of the emulator (tools/countInstructions.c).
#pragma once

#include <cstdint>

namespace bench {

// Opens the file into which the plugin writes its count; false when it gives none.
bool openInstructionCount(const char* path);

// Instructions that `work(context)` executes, exactly: what two runs take less what one takes. Run it once before.
uint64_t executedInstructions(void (*work)(const void*), const void* context);

} // namespace bench
