#include "compareBuffers.h"

#include "testLog.h"

#include <cmath>

namespace {

struct Window
{
    int stride, rows, x, width, y, height;
};

struct WindowPair
{
    Window ref, tst;
};

int valueOr(int value, int fallback)
{
    return value == -1 ? fallback : value;
}

WindowPair withDefaults(WindowPair pair)
{
    auto& [ref, tst] = pair;
    ref.x = valueOr(ref.x, 0);
    ref.y = valueOr(ref.y, 0);
    ref.width = valueOr(ref.width, ref.stride);
    ref.height = valueOr(ref.height, ref.rows);
    tst = {valueOr(tst.stride, ref.stride), valueOr(tst.rows, ref.rows), valueOr(tst.x, ref.x),
           valueOr(tst.width, ref.width),   valueOr(tst.y, ref.y),       valueOr(tst.height, ref.height)};
    return pair;
}

int bottom(const Window& window)
{
    return static_cast<int>(static_cast<unsigned>(window.y) + static_cast<unsigned>(window.height));
}

int right(const Window& window)
{
    return static_cast<int>(static_cast<unsigned>(window.x) + static_cast<unsigned>(window.width));
}

bool leavesBlock(const Window& window)
{
    return window.x < 0 || window.y < 0 || int64_t{window.y} + window.height > window.rows ||
           int64_t{window.x} + window.width > window.stride;
}

bool comparable(const WindowPair& pair)
{
    const auto& [ref, tst] = pair;
    if (ref.width != tst.width || ref.height != tst.height) {
        testLog("Ref Win : %d,%d\n", ref.width, ref.height);
        testLog("Tst Win : %d,%d\n", tst.width, tst.height);
        return false;
    }
    if (leavesBlock(ref) || leavesBlock(tst)) {
        testLog("Ref Win : %d > %d, %d > %d\n", bottom(ref), ref.rows, right(ref), ref.stride);
        testLog("Tst Win : %d > %d, %d > %d\n", bottom(tst), tst.rows, right(tst), tst.stride);
        return false;
    }
    return true;
}

void logWindows(const WindowPair& pair)
{
    const auto& [ref, tst] = pair;
    testLog("Ref Win : %d,%d,%d,%d,%d,%d\n", ref.stride, ref.rows, ref.y, ref.x, ref.width, ref.height);
    testLog("Tst Win : %d,%d,%d,%d,%d,%d\n", tst.stride, tst.rows, tst.y, tst.x, tst.width, tst.height);
}

// Visits the elements in row-major order. Returns 1 at the mismatch that exceeds `allowed`; the first one is logged.
template <class T, class Matches, class Log>
int compareWindows(const T* ref, const T* tst, WindowPair pair, int allowed, Matches matches, Log logValues)
{
    pair = withDefaults(pair);
    if (!comparable(pair))
        return 1;
    int row = -1, column = -1; // of the first mismatch
    int differences = 0;
    const auto at = [](const T* block, const Window& window, int j, int i) {
        return block[static_cast<size_t>(window.y + j) * static_cast<size_t>(window.stride) +
                     static_cast<size_t>(window.x + i)];
    };
    for (int j = 0; j < pair.ref.height && differences <= allowed; j++)
        for (int i = 0; i < pair.ref.width && differences <= allowed; i++)
            if (!matches(at(ref, pair.ref, j, i), at(tst, pair.tst, j, i)) && differences++ == 0) {
                row = j;
                column = i;
            }
    if (differences <= allowed)
        return 0;
    logValues(pair, row, column, at(ref, pair.ref, row, column), at(tst, pair.tst, row, column));
    logWindows(pair);
    return 1;
}

// The window of a buffer, in the order that the comparisons take it.
#define WINDOW_OF(buffer) (buffer).stride, (buffer).rows, (buffer).x, (buffer).width, (buffer).y, (buffer).height

template <class T>
T* blockOf(const RAVIK_TEST_Buffer& buffer)
{
    return reinterpret_cast<T*>(buffer.block());
}

} // namespace

template <class T>
int RAVIK_TEST_CompareBuffers(const T* ref, const T* tst, int refStride, int refRows, int refX, int refWidth, int refY,
                              int refHeight, int tstStride, int tstRows, int tstX, int tstWidth, int tstY,
                              int tstHeight, T tolerance)
{
    return compareWindows(
        ref, tst,
        {{refStride, refRows, refX, refWidth, refY, refHeight}, {tstStride, tstRows, tstX, tstWidth, tstY, tstHeight}},
        0,
        [tolerance](T a, T b) {
            // 64-bit arithmetic: exact for narrower types, and right in its low bits for the widest.
            const uint64_t difference = a > b ? static_cast<uint64_t>(a) - static_cast<uint64_t>(b)
                                              : static_cast<uint64_t>(b) - static_cast<uint64_t>(a);
            return difference <= static_cast<uint64_t>(tolerance);
        },
        [](const WindowPair& pair, int j, int i, T a, T b) {
            testLog("Diff Index = (%d,%d) (%d,%d) ref = %lld, tst = %lld\n", pair.ref.y + j, pair.ref.x + i,
                    pair.tst.y + j, pair.tst.x + i, static_cast<long long>(a), static_cast<long long>(b));
        });
}

template <class T>
int RAVIK_TEST_CompareBuffers(RAVIK_TEST_Buffer& ref, RAVIK_TEST_Buffer& tst, T tolerance)
{
    return RAVIK_TEST_CompareBuffers<T>(blockOf<T>(ref), blockOf<T>(tst), WINDOW_OF(ref), WINDOW_OF(tst), tolerance);
}

#define INSTANTIATE(T)                                                                                                \
    template int RAVIK_TEST_CompareBuffers(const T*, const T*, int, int, int, int, int, int, int, int, int, int, int, \
                                           int, T);                                                                   \
    template int RAVIK_TEST_CompareBuffers(RAVIK_TEST_Buffer&, RAVIK_TEST_Buffer&, T);
INSTANTIATE(uint8_t)
INSTANTIATE(int8_t)
INSTANTIATE(uint16_t)
INSTANTIATE(int16_t)
INSTANTIATE(uint32_t)
INSTANTIATE(int32_t)
INSTANTIATE(uint64_t)
#undef INSTANTIATE

int RAVIK_TEST_CompareBuffers_f32(float* ref, float* tst, int refStride, int refRows, int refX, int refWidth, int refY,
                                  int refHeight, int tstStride, int tstRows, int tstX, int tstWidth, int tstY,
                                  int tstHeight, float tolerance, int allowed)
{
    return compareWindows<float>(
        ref, tst,
        {{refStride, refRows, refX, refWidth, refY, refHeight}, {tstStride, tstRows, tstX, tstWidth, tstY, tstHeight}},
        allowed,
        [tolerance](float a, float b) {
            return a == b || std::fabs(a - b) <= tolerance || (std::isnan(a) && std::isnan(b));
        },
        [](const WindowPair& pair, int j, int i, float a, float b) {
            testLog("Diff Index = (%d,%d) (%d,%d) ref = %.9g, tst = %.9g\n", pair.ref.y + j, pair.ref.x + i,
                    pair.tst.y + j, pair.tst.x + i, static_cast<double>(a), static_cast<double>(b));
        });
}

int RAVIK_TEST_CompareBuffers_f32(RAVIK_TEST_Buffer& ref, RAVIK_TEST_Buffer& tst, float tolerance)
{
    return RAVIK_TEST_CompareBuffersAllowNDiff_f32(ref, tst, tolerance, 0);
}

int RAVIK_TEST_CompareBuffersAllowNDiff_f32(RAVIK_TEST_Buffer& ref, RAVIK_TEST_Buffer& tst, float tolerance,
                                            int allowed)
{
    return RAVIK_TEST_CompareBuffers_f32(blockOf<float>(ref), blockOf<float>(tst), WINDOW_OF(ref), WINDOW_OF(tst),
                                         tolerance, allowed);
}

void logVectorFailure(const char* name, unsigned targetIndex, unsigned vectorNumber)
{
    testLog("RAVIK_TEST, %s_%c (%d) =>%s", name, letterOf(targetIndex), static_cast<int>(vectorNumber), verdictOf(1));
}

bool shapeLike(const RAVIK_TEST_Buffer& expected, unsigned targetIndex, RAVIK_TEST_Buffer& output)
{
    if (output.Shape(expected.shape(), memoryOptionOf(targetIndex), false))
        return true;
    testLog("Out of memory @ %d.\n", 55);
    return false;
}
