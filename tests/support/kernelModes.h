// The inner kernels by their pointers, in the modes of references and of vectors.
#pragma once

#include "kernels.h"

#include <gtest/gtest.h>

#include <ravik/ravik.h>

namespace test {

// Runs `check` twice: the kernel's pointer is that of its reference, then that of its vectors.
template <class Check>
void inBothModes(rvk::Kernel kernel, const char* name, Check check)
{
    constexpr auto references = static_cast<rvkOperationMode>(RAVIK_OP_CPU_PERFORMANCE + 1);
    const rvk::Cell& cell = rvk::kernelCells[static_cast<uint32_t>(kernel)];
    ASSERT_EQ(rvkSetOperationMode(references), 0);
    const rvk::Cell reference = cell;
    check();
    ASSERT_EQ(rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE), 0);
    EXPECT_NE(cell, reference) << name;
    check();
}

} // namespace test
