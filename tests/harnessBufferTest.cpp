// Test buffers, the comparison of windows, and stored test vectors.
#include "compareBuffers.h"
#include "device.h"
#include "settings.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cmath>
#include <cstring>
#include <numeric>

using namespace test;

namespace {

class Harness : public testing::Test
{
protected:
    Harness()
    {
        settings = {};
        runSwitches = {};
        clearLog();
    }
    RAVIK_TEST_Buffer buffer;
};
using TestBuffer = Harness;
using Comparison = Harness;

bool isMultiple(const void* pointer, uintptr_t of)
{
    return reinterpret_cast<uintptr_t>(pointer) % of == 0;
}

TEST_F(TestBuffer, IsShapedZeroedAndCleared)
{
    const MemShape_ shape = {10, 4, 2, 1, 5, 2, 4, 0};
    for (const rvkMemOption option : {RAVIK_MEM_SYSTEM, RAVIK_MEM_SHARED, RAVIK_MEM_LIBRARY}) {
        ASSERT_TRUE(buffer.Shape(shape, option, true));
        EXPECT_EQ(buffer.option, option);
        EXPECT_EQ(buffer.shape(), shape);
        EXPECT_EQ(buffer.size, 160u);
        EXPECT_EQ(buffer.window<uint8_t>() - buffer.block(), (10 + 2) * 4);
        for (uint32_t i = 0; i < buffer.size; i++)
            ASSERT_EQ(buffer.block()[i], 0);
        memset(buffer.data, 1, buffer.size);
    }
    const void* const block = buffer.data;
    ASSERT_TRUE(buffer.Shape(MemShape_::packed(10, 10, 1), RAVIK_MEM_LIBRARY, true));
    EXPECT_EQ(buffer.data, block) << "kept";
    EXPECT_EQ(buffer.block()[99], 0) << "and filled with zeros";
    buffer.Release();
    EXPECT_EQ(buffer.shape(), MemShape_{});
    EXPECT_EQ(buffer.data, nullptr);
}

TEST_F(TestBuffer, RefusesAbsurdShapes)
{
    for (const MemShape_ shape :
         {MemShape_::packed(0, 4, 1), MemShape_::packed(-1, -4, 1), MemShape_::packed(4, 4, 0),
          MemShape_::packed(65536, 65536, 1), MemShape_::packed(INT32_MAX, INT32_MAX, INT32_MAX)})
        EXPECT_FALSE(buffer.Shape(shape, RAVIK_MEM_SYSTEM, false));
    EXPECT_FALSE(buffer.Shape(MemShape_::packed(4, 4, 1), static_cast<rvkMemOption>(3), false));
}

TEST_F(TestBuffer, GoesToTheHeapAndLosesAlignmentAsTold)
{
    MemShape_ shape = MemShape_::packed(100, 4, 2);
    settings.limitAlignment = 1;
    ASSERT_TRUE(buffer.Shape(shape, RAVIK_MEM_SHARED, true));
    EXPECT_TRUE(isMultiple(buffer.data, 2) && !isMultiple(buffer.data, 4)) << "aligned to its elements alone";
    shape.alignment = 8;
    ASSERT_TRUE(buffer.Shape(shape, RAVIK_MEM_SHARED, true));
    EXPECT_TRUE(isMultiple(buffer.data, 8) && !isMultiple(buffer.data, 16));
    ASSERT_TRUE(buffer.Shape(shape, RAVIK_MEM_SYSTEM, true));
    EXPECT_TRUE(isMultiple(buffer.data, 16)) << "the heap is not concerned";

    buffer.onHeap = 1;
    ASSERT_TRUE(buffer.Shape(shape, RAVIK_MEM_SHARED, true));
    EXPECT_EQ(buffer.option, RAVIK_MEM_SYSTEM);
    buffer.onHeap = 0;
    runSwitches.sharedVectors = 0;
    ASSERT_TRUE(buffer.Shape(shape, RAVIK_MEM_SHARED, true));
    EXPECT_EQ(buffer.option, RAVIK_MEM_SYSTEM);
}

TEST_F(TestBuffer, GetsWiderRows)
{
    ASSERT_TRUE(buffer.Shape({5, 3, 1, 1, 3, 2, 2, 0}, RAVIK_MEM_SYSTEM, false));
    for (int j = 0; j < 2; j++)
        for (int i = 0; i < 3; i++)
            reinterpret_cast<int16_t*>(buffer.row(j))[i] = static_cast<int16_t>(10 * j + i + 1);

    EXPECT_EQ(RAVIK_TEST_AddStrideToBuffer<short>(buffer, 5, RAVIK_MEM_SYSTEM, true), 0);
    EXPECT_EQ(buffer.stride, 5) << "wide enough";
    EXPECT_EQ(RAVIK_TEST_AddStrideToBuffer<short>(buffer, 9, RAVIK_MEM_SYSTEM, true), 0);
    EXPECT_EQ(buffer.shape(), (MemShape_{9, 3, 1, 1, 3, 2, 2, 0}));
    const auto* const block = reinterpret_cast<const int16_t*>(buffer.block());
    for (int i = 0; i < 27; i++) {
        const int j = i / 9 - 1, k = i % 9 - 1;
        EXPECT_EQ(block[i], j >= 0 && k >= 0 && k < 3 ? 10 * j + k + 1 : 0) << i;
    }
    EXPECT_NE(RAVIK_TEST_AddStrideToBuffer<int>(buffer, 20, RAVIK_MEM_SYSTEM, true), 0) << "other elements";
    EXPECT_EQ(RAVIK_TEST_AddStrideToBuffer<int>(buffer, 20, RAVIK_MEM_SYSTEM, false), 0);
    EXPECT_EQ(*buffer.window<int16_t>(), 0);
    EXPECT_NE(RAVIK_TEST_AddStrideToBuffer<int>(buffer, INT32_MAX, RAVIK_MEM_SYSTEM, false), 0);
}

TEST_F(TestBuffer, IsFlushedThroughTheDspLibrary)
{
    char bytes[2];
    RAVIK_TEST_Buffer_Flush_Invalidate(1, bytes, 2); // no library: nothing
    rvktest_adspstub_open();
    EXPECT_TRUE(logHas("3 ravik_test: Unable to open libravikadsp_stub.so\n"));

    void* const library = dlopen(RVK_TEST_BINARY_DIR "/fakeDspStub/libravikadsp_stub.so", RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    auto& events = *static_cast<std::string*>(dlsym(library, "fakeDspEvents"));
    rvktest_adspstub_open();
    RAVIK_TEST_Buffer_Flush_Invalidate(1, bytes, 2);
    EXPECT_EQ(events, "") << "only with -C";
    settings.flushCaches = 1;
    RAVIK_TEST_Buffer_Flush_Invalidate(2, bytes, 2, bytes + 1, 1);
    rvktest_adspstub_close();
    char expected[200];
    snprintf(expected, sizeof expected, "flush %p 2\nflush %p 1\nleaks\n", static_cast<void*>(bytes),
             static_cast<void*>(bytes + 1));
    EXPECT_EQ(events, expected);
    RAVIK_TEST_Buffer_Flush_Invalidate(1, bytes, 2); // closed
    EXPECT_EQ(events, expected);
}

// ---- comparison ----

template <class T>
int compare(const T* ref, const T* tst, std::array<int, 12> w, T tolerance)
{
    return RAVIK_TEST_CompareBuffers<T>(ref, tst, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], w[8], w[9], w[10],
                                        w[11], tolerance);
}

TEST_F(Comparison, OfWindowsAtTheirOwnOffsets)
{
    // The window 1 2 / 3 4 at (1,1) of a 4x3 block and at (2,0) of a 5x2 block.
    const uint8_t ref[] = {9, 9, 9, 9, 9, 1, 2, 9, 9, 3, 4, 9};
    uint8_t tst[] = {7, 7, 1, 2, 7, 7, 7, 3, 4, 7};
    const std::array<int, 12> windows = {4, 3, 1, 2, 1, 2, 5, 2, 2, 2, 0, 2};
    EXPECT_EQ(compare<uint8_t>(ref, tst, windows, 0), 0);
    tst[8] = 6;
    EXPECT_EQ(compare<uint8_t>(ref, tst, windows, 2), 0) << "a difference equal to the tolerance";
    clearLog();
    EXPECT_EQ(compare<uint8_t>(ref, tst, windows, 1), 1);
    EXPECT_EQ(logLines, (std::vector<std::string>{"3 ravik_test: Diff Index = (2,2) (1,3) ref = 4, tst = 6\n",
                                                  "3 ravik_test: Ref Win : 4,3,1,1,2,2\n",
                                                  "3 ravik_test: Tst Win : 5,2,0,2,2,2\n"}));
}

TEST_F(Comparison, TakesDefaults)
{
    const int32_t ref[] = {1, 2, 3, 4, 5, 6}, tst[] = {1, 2, 3, 4, 5, 7};
    std::array<int, 12> windows = {3, 2, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    EXPECT_EQ(compare<int32_t>(ref, ref, windows, 0), 0);
    EXPECT_EQ(compare<int32_t>(ref, tst, windows, 0), 1);
    windows[3] = 2;
    EXPECT_EQ(compare<int32_t>(ref, tst, windows, 0), 0) << "the reference's width";
}

TEST_F(Comparison, RefusesWindowsThatDifferOrLeaveTheirBlocks)
{
    const uint8_t data[16] = {};
    EXPECT_EQ(compare<uint8_t>(data, data, {4, 4, 0, 3, 0, 2, 4, 4, 0, 2, 0, 2}, 0), 1);
    EXPECT_EQ(logLines, (std::vector<std::string>{"3 ravik_test: Ref Win : 3,2\n", "3 ravik_test: Tst Win : 2,2\n"}));
    clearLog();
    EXPECT_EQ(compare<uint8_t>(data, data, {4, 4, 0, 3, 0, 2, 4, 4, 2, 3, 0, 2}, 0), 1);
    EXPECT_EQ(logLines, (std::vector<std::string>{"3 ravik_test: Ref Win : 2 > 4, 3 > 4\n",
                                                  "3 ravik_test: Tst Win : 2 > 4, 5 > 4\n"}));
    EXPECT_EQ(compare<uint8_t>(data, data, {4, 4, 0, 4, 1, 4, 4, 8, 0, 4, 0, 4}, 0), 1);
    EXPECT_EQ(compare<uint8_t>(data, data, {4, 4, -2, 2, 0, 2, 4, 4, 0, 2, 0, 2}, 0), 1);
    EXPECT_EQ(compare<uint8_t>(data, data, {4, 4, INT32_MAX, INT32_MAX, 0, 2, 4, 4, 0, INT32_MAX, 0, 2}, 0), 1);
    EXPECT_EQ(compare<uint8_t>(nullptr, nullptr, {4, 4, 0, 4, 0, 0, 4, 4, 0, 4, 0, 0}, 0), 0) << "no rows, no reads";
}

TEST_F(Comparison, FormsDifferencesExactly)
{
    const auto differs = [](auto a, decltype(a) b, decltype(a) tolerance) {
        return compare<decltype(a)>(&a, &b, {1, 1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}, tolerance);
    };
    EXPECT_EQ(differs(uint8_t{0}, 255, 0), 1);
    EXPECT_EQ(logLines[0], "3 ravik_test: Diff Index = (0,0) (0,0) ref = 0, tst = 255\n");
    EXPECT_EQ(differs(INT32_MIN, INT32_MAX, INT32_MAX), 1) << "the difference needs 33 bits";
    EXPECT_EQ(differs(int8_t{-128}, -127, 1), 0);
    EXPECT_EQ(differs(UINT32_MAX, uint32_t{0}, UINT32_MAX - 1), 1);
    EXPECT_EQ(differs(UINT64_MAX, uint64_t{0}, UINT64_MAX), 0);
    EXPECT_EQ(differs(UINT64_MAX, uint64_t{0}, UINT64_MAX - 1), 1);
}

TEST_F(Comparison, OfFloats)
{
    RAVIK_TEST_Buffer ref, tst;
    const auto set = [](RAVIK_TEST_Buffer& row, std::initializer_list<float> values) {
        ASSERT_TRUE(row.Shape(MemShape_::packed(static_cast<int>(values.size()), 1, 4), RAVIK_MEM_SYSTEM, false));
        std::copy(values.begin(), values.end(), row.window<float>());
    };
    set(ref, {1, 2, 3, 4});
    set(tst, {1.5f, 2, 3.5f, 4});
    EXPECT_EQ(RAVIK_TEST_CompareBuffers_f32(ref, tst, 0.5f), 0);
    EXPECT_EQ(RAVIK_TEST_CompareBuffers_f32(ref, tst, 0.25f), 1);
    EXPECT_EQ(RAVIK_TEST_CompareBuffersAllowNDiff_f32(ref, tst, 0.25f, 1), 1);
    EXPECT_EQ(RAVIK_TEST_CompareBuffersAllowNDiff_f32(ref, tst, 0.25f, 2), 0);

    set(ref, {INFINITY, NAN, 0.0f});
    set(tst, {INFINITY, NAN, -0.0f});
    EXPECT_EQ(RAVIK_TEST_CompareBuffers_f32(ref, tst, 0), 0);
    set(tst, {-INFINITY, NAN, 0.0f});
    EXPECT_EQ(RAVIK_TEST_CompareBuffers_f32(ref, tst, 1e30f), 1);
    set(tst, {INFINITY, 1, 0.0f});
    EXPECT_EQ(RAVIK_TEST_CompareBuffers_f32(ref, tst, INFINITY), 1) << "a NaN is no number";
}

// ---- stored test vectors ----

void increment(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    for (uint32_t i = 0; i < width * height; i++)
        dst[i] = static_cast<uint8_t>(src[i] + 1);
}

void incrementRows(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                   uint32_t dstStride)
{
    for (uint32_t j = 0; j < height; j++)
        increment(src + j * srcStride, width, 1, dst + j * dstStride);
}

void forget(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t) {}

TEST_F(Comparison, RunsStoredVectorsThroughReferenceAndFunction)
{
    RAVIK_TEST_Buffer input, expected;
    ASSERT_TRUE(input.Shape(MemShape_::packed(4, 3, 1), RAVIK_MEM_SYSTEM, false));
    ASSERT_TRUE(expected.Shape(MemShape_::packed(4, 3, 1), RAVIK_MEM_SYSTEM, false));
    std::iota(input.block(), input.block() + 12, uint8_t{0});
    std::iota(expected.block(), expected.block() + 12, uint8_t{1});

    const auto run = [&](auto reference, auto function, int mode) {
        clearLog();
        return RunTestVectors<uint8_t>(input, 4, 3, expected, kTargetVecta, 7, "name", reference, function, mode, 0);
    };
    const auto wrong = [](const uint8_t*, uint32_t, uint32_t, uint8_t*) {};
    const char failure[] = "3 ravik_test: RAVIK_TEST, name_V (7) =>FAIL";
    EXPECT_EQ(run(increment, incrementRows, 0), 0);
    EXPECT_FALSE(logHas(failure));
    EXPECT_NE(run(increment, forget, 0), 0);
    EXPECT_TRUE(logHas(failure));
    EXPECT_NE(run(wrong, incrementRows, 0), 0);
    EXPECT_TRUE(logHas(failure));
    EXPECT_EQ(run(wrong, incrementRows, kSkipReference), 0) << "the reference is not asked";

    RAVIK_TEST_Buffer empty;
    EXPECT_EQ(RunTestVectors<uint8_t>(input, 4, 3, empty, kTargetC, 0, "name", increment, incrementRows, 0, 0), 1);
    EXPECT_TRUE(logHas("3 ravik_test: Out of memory @ 55.\n"));
}

} // namespace
