// Comparison of two windows within a tolerance, and the running of stored test vectors.
#pragma once

#include "settings.h"
#include "testBuffer.h"

#include <cstdint>

// Every comparison returns 0 when the windows match; otherwise 1, with the first mismatch in the log. A difference
// equal to the tolerance matches. The windows are given by strides, positions and sizes in elements and rows; -1 is a
// default: a window at the block's origin and as large as the block for the reference, the reference's value for the
// test side.

// T: 8-, 16- and 32-bit integers, uint64_t.
template <class T>
int RAVIK_TEST_CompareBuffers(const T* ref, const T* tst, int refStride, int refRows, int refX, int refWidth, int refY,
                              int refHeight, int tstStride, int tstRows, int tstX, int tstWidth, int tstY,
                              int tstHeight, T tolerance);

template <class T>
int RAVIK_TEST_CompareBuffers(RAVIK_TEST_Buffer& ref, RAVIK_TEST_Buffer& tst, T tolerance);

// `allowed` elements may differ. Two NaNs match, a NaN and a number do not.
int RAVIK_TEST_CompareBuffers_f32(float* ref, float* tst, int refStride, int refRows, int refX, int refWidth, int refY,
                                  int refHeight, int tstStride, int tstRows, int tstX, int tstWidth, int tstY,
                                  int tstHeight, float tolerance, int allowed);
int RAVIK_TEST_CompareBuffers_f32(RAVIK_TEST_Buffer& ref, RAVIK_TEST_Buffer& tst, float tolerance);
int RAVIK_TEST_CompareBuffersAllowNDiff_f32(RAVIK_TEST_Buffer& ref, RAVIK_TEST_Buffer& tst, float tolerance,
                                            int allowed);

// Logs "RAVIK_TEST, <name>_<letter of the target> (<vector>) =>FAIL".
void logVectorFailure(const char* name, unsigned targetIndex, unsigned vectorNumber);

// In RunTestVectors: the vectors are not run through the reference.
inline constexpr int kSkipReference = 2;

// Runs a stored pair of input and expected output through the reference and the function under test:
//     reference(const T* src, uint32_t width, uint32_t height, T* dst)
//     underTest(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, T* dst, uint32_t dstStride)
// with strides in bytes. Returns 0 when both give the expected output.
template <class T, class Reference, class Function>
int RunTestVectors(RAVIK_TEST_Buffer& input, unsigned width, unsigned height, RAVIK_TEST_Buffer& expected,
                   unsigned targetIndex, unsigned vectorNumber, const char* name, Reference reference,
                   Function underTest, int mode, T tolerance);

// ---- definitions ----------------------------------------------------------------------------------------------------

// Logs "Out of memory @ 55.\n" and returns false when the output cannot be had.
bool shapeLike(const RAVIK_TEST_Buffer& expected, unsigned targetIndex, RAVIK_TEST_Buffer& output);

template <class T, class Reference, class Function>
int RunTestVectors(RAVIK_TEST_Buffer& input, unsigned width, unsigned height, RAVIK_TEST_Buffer& expected,
                   unsigned targetIndex, unsigned vectorNumber, const char* name, Reference reference,
                   Function underTest, int mode, T tolerance)
{
    RAVIK_TEST_Buffer output;
    const auto compare = [&] {
        const int failure = RAVIK_TEST_CompareBuffers<T>(expected, output, tolerance);
        if (failure)
            logVectorFailure(name, targetIndex, vectorNumber);
        return failure;
    };

    int failure = 0;
    if (mode != kSkipReference) {
        if (!shapeLike(expected, targetIndex, output))
            return 1;
        reference(input.window<T>(), width, height, output.window<T>());
        failure |= compare();
    }
    if (!shapeLike(expected, targetIndex, output))
        return 1;
    underTest(input.window<T>(), width, height, input.strideBytes(), output.window<T>(), output.strideBytes());
    return failure | compare();
}
