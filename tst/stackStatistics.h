// How much stack a group needs: a stretch of the stack is filled with a byte before the group runs, and what is left of
// it is measured afterwards.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr size_t kStackStatisticsBytes = 128 * 1024;

// Fills the 128 KiB of stack below the caller's frame with 0xDD. Returns their lowest address.
const uint8_t* rvk_test_stackprefill();

// The first of the bytes that is no longer 0xDD.
const uint8_t* firstUsedByte(const uint8_t* lowest);
