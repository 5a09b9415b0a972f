// Makes the test-data directory from the same function entries that read it.
//
// The same program writes the same bytes on every machine: inputs come from generators that are seeded by what they are
// for, results from the C reference.
#pragma once

#include <cstddef>
#include <string>

// How many resolutions profiling knows, from VGA (index 0) upward.
inline constexpr size_t kProfilingResolutions = 8;

// Writes stored vectors, the profiling vectors of the first `resolutions` resolutions and, last, the test table: a
// directory without a table is not complete. Throws std::exception when something cannot be written.
void writeTestData(const std::string& directory, size_t resolutions);
