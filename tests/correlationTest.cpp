#include "memory.h"
#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>

using namespace test;

namespace {

// ---- the references against the definition, output by output ------------------------------------

// A picture and a kernel of random size and content.
template <class S, class Weight>
struct Case
{
    uint32_t M, N, width, height;
    std::vector<S> src;
    std::vector<Weight> kernel;

    Case(Random& random, uint32_t columns, uint32_t rows, size_t weights)
        : M(columns), N(rows), width(M + random.below(20)), height(N + random.below(20)), src(width * height),
          kernel(weights)
    {
        const auto content = static_cast<Content>(random.below(static_cast<uint32_t>(Content::count)));
        for (S& pixel : src)
            pixel = drawElement<S>(random, content);
        for (Weight& weight : kernel)
            weight = drawElement<Weight>(random, random.below(2) ? content : Content::small);
    }

    // Replicated outside.
    S at(int64_t x, int64_t y) const
    {
        return src[static_cast<size_t>(std::clamp<int64_t>(y, 0, height - 1) * width +
                                       std::clamp<int64_t>(x, 0, width - 1))];
    }
    uint32_t stride() const { return width * static_cast<uint32_t>(sizeof(S)); }
};

uint32_t oddUpTo(Random& random, uint32_t most)
{
    return 1 + 2 * random.below((most + 1) / 2);
}

// An exact sum as 32 bits hold it, shifted down and clamped.
template <class D>
D stored(int64_t sum, uint32_t shift)
{
    const int64_t wrapped = static_cast<int32_t>(static_cast<uint32_t>(sum));
    const int64_t divisor = int64_t{1} << shift;
    const int64_t quotient = wrapped / divisor - (wrapped % divisor < 0);
    return static_cast<D>(std::clamp<int64_t>(quotient, std::numeric_limits<D>::min(), std::numeric_limits<D>::max()));
}

// sign +1: the sum over (i, j) of kernel(i, j) * picture(x + i, y + j), i and j counted from the kernel's centre: a
// correlation; -1: picture(x - i, y - j): a convolution.
template <class S, class Weight>
int64_t windowSum(const Case<S, Weight>& c, int64_t x, int64_t y, int sign)
{
    int64_t sum = 0;
    const int64_t rx = c.M / 2, ry = c.N / 2;
    for (int64_t j = -ry; j <= ry; ++j)
        for (int64_t i = -rx; i <= rx; ++i)
            sum += int64_t{c.kernel[static_cast<size_t>((j + ry) * c.M + i + rx)]} * c.at(x + sign * i, y + sign * j);
    return sum;
}

template <class D, class S, class Weight, class Call>
void expectSums(int sign, uint32_t fixedSize, bool isSquare, Call call)
{
    Random random(11);
    for (int trial = 0; trial < 60; ++trial) {
        const uint32_t M = fixedSize ? fixedSize : oddUpTo(random, 9), N = isSquare ? M : oddUpTo(random, 9);
        const Case<S, Weight> c(random, M, N, M * N);
        const uint32_t shift = random.below(trial < 30 ? 12 : 32);
        std::vector<D> dst(c.src.size()), expected;
        for (uint32_t y = 0; y < c.height; ++y)
            for (uint32_t x = 0; x < c.width; ++x)
                expected.push_back(stored<D>(windowSum(c, x, y, sign), shift));
        ASSERT_EQ(call(c, shift, dst.data(), c.width * static_cast<uint32_t>(sizeof(D))), RAVIK_SUCCESS);
        ASSERT_EQ(dst, expected) << c.width << "x" << c.height << ", kernel " << M << "x" << N << ", shift " << shift;
    }
}

TEST(Correlation, ReferencesFollowTheDefinition)
{
    expectSums<uint8_t, uint8_t, int8_t>(1, 3, true, [](const auto& c, uint32_t shift, uint8_t* dst, uint32_t stride) {
        return rvkFilterCorr3x3s8_v2C(c.src.data(), c.width, c.height, c.stride(), c.kernel.data(), shift, dst, stride);
    });
    expectSums<uint8_t, uint8_t, int16_t>(1, 0, true, [](const auto& c, uint32_t shift, auto* dst, uint32_t stride) {
        return rvkFilterCorrNxNu8C(c.src.data(), c.width, c.height, c.stride(), c.kernel.data(), c.N, shift, dst,
                                   stride);
    });
    expectSums<int16_t, uint8_t, int16_t>(1, 0, true, [](const auto& c, uint32_t shift, auto* dst, uint32_t stride) {
        return rvkFilterCorrNxNu8s16C(c.src.data(), c.width, c.height, c.stride(), c.kernel.data(), c.N, shift, dst,
                                      stride);
    });
    expectSums<uint8_t, uint8_t, int16_t>(-1, 0, false, [](const auto& c, uint32_t shift, auto* dst, uint32_t stride) {
        return rvkFilterConvolveMxNu8C(c.src.data(), c.width, c.height, c.stride(), c.kernel.data(), c.M, c.N, shift,
                                       dst, stride);
    });
    expectSums<int16_t, uint8_t, int16_t>(-1, 0, false, [](const auto& c, uint32_t shift, auto* dst, uint32_t stride) {
        return rvkFilterConvolveMxNu8s16C(c.src.data(), c.width, c.height, c.stride(), c.kernel.data(), c.M, c.N, shift,
                                          dst, stride);
    });
}

TEST(Correlation, ReferenceOfTheValidConvolutionFollowsTheDefinition)
{
    Random random(12);
    for (int trial = 0; trial < 60; ++trial) {
        const uint32_t M = oddUpTo(random, 9), N = oddUpTo(random, 9);
        const Case<int16_t, int16_t> c(random, M, N, M * N);
        const uint32_t width = c.width - M + 1, height = c.height - N + 1, shift = random.below(32);
        std::vector<int16_t> dst(width * height), expected;
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                expected.push_back(stored<int16_t>(windowSum(c, x + M / 2, y + N / 2, -1), shift));
        ASSERT_EQ(rvkConvValids16C(c.src.data(), c.width, c.height, c.stride(), c.kernel.data(), M, N, shift,
                                   dst.data(), width * 2),
                  RAVIK_SUCCESS);
        ASSERT_EQ(dst, expected) << c.width << "x" << c.height << ", kernel " << M << "x" << N << ", shift " << shift;
    }
}

// Weights of the row first, then those of the column.
template <class D, class S, class Call>
void expectSeparableSums(int sign, uint32_t fixedSize, bool isSquare, Call call)
{
    Random random(13);
    for (int trial = 0; trial < 60; ++trial) {
        const uint32_t M = fixedSize ? fixedSize : oddUpTo(random, 9), N = isSquare ? M : oddUpTo(random, 9);
        const Case<S, int16_t> c(random, M, N, M + N);
        const int16_t *kernelX = c.kernel.data(), *kernelY = kernelX + M;
        const uint32_t shiftX = random.below(trial < 30 ? 10 : 32), shiftY = random.below(trial < 30 ? 10 : 32);
        const auto rowSum = [&](int64_t x, int64_t y) {
            int64_t sum = 0;
            for (int64_t i = 0; i < M; ++i)
                sum += int64_t{kernelX[i]} * c.at(x + sign * (i - M / 2), y);
            return stored<int16_t>(sum, shiftX);
        };
        std::vector<D> dst(c.src.size()), expected;
        for (int64_t y = 0; y < c.height; ++y)
            for (int64_t x = 0; x < c.width; ++x) {
                int64_t sum = 0;
                for (int64_t j = 0; j < N; ++j)
                    sum += int64_t{kernelY[j]} * rowSum(x, y + sign * (j - N / 2));
                expected.push_back(stored<D>(sum, shiftY));
            }
        ASSERT_EQ(call(c, kernelX, kernelY, shiftX, shiftY, dst.data(), c.width * static_cast<uint32_t>(sizeof(D))),
                  RAVIK_SUCCESS);
        ASSERT_EQ(dst, expected) << c.width << "x" << c.height << ", kernel " << M << "x" << N;
    }
}

template <class Function>
void expectFixedSize(uint32_t size, Function function)
{
    expectSeparableSums<int16_t, int16_t>(1, size, true,
                                          [&](const auto& c, const int16_t* kernelX, const int16_t* kernelY,
                                              uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t stride) {
                                              return function(c.src.data(), c.width, c.height, c.stride(), kernelX,
                                                              kernelY, shiftX, shiftY, dst, stride);
                                          });
}

TEST(Correlation, SeparableReferencesFollowTheDefinition)
{
    expectSeparableSums<uint8_t, uint8_t>(
        1, 0, false,
        [](const auto& c, auto* kernelX, auto* kernelY, uint32_t shiftX, uint32_t shiftY, auto* dst, uint32_t stride) {
            return rvkFilterCorrSepMxNu8C(c.src.data(), c.width, c.height, c.stride(), kernelX, c.M, kernelY, c.N,
                                          shiftX, shiftY, dst, stride);
        });
    expectSeparableSums<int16_t, int16_t>(
        -1, 0, false,
        [](const auto& c, auto* kernelX, auto* kernelY, uint32_t shiftX, uint32_t shiftY, auto* dst, uint32_t stride) {
            return rvkFilterConvSepMxNs16C(c.src.data(), c.width, c.height, c.stride(), kernelX, c.M, kernelY, c.N,
                                           shiftX, shiftY, dst, stride);
        });
    expectSeparableSums<int16_t, int16_t>(
        1, 0, true,
        [](const auto& c, auto* kernelX, auto* kernelY, uint32_t shiftX, uint32_t shiftY, auto* dst, uint32_t stride) {
            return rvkFilterCorrSepNxNs16C(c.src.data(), c.width, c.height, c.stride(), kernelX, kernelY, c.N, shiftX,
                                           shiftY, dst, stride);
        });
    expectFixedSize(9, rvkFilterCorrSep9x9s16_v2C);
    expectFixedSize(11, rvkFilterCorrSep11x11s16_v2C);
    expectFixedSize(13, rvkFilterCorrSep13x13s16_v2C);
    expectFixedSize(15, rvkFilterCorrSep15x15s16_v2C);
    expectFixedSize(17, rvkFilterCorrSep17x17s16_v2C);
}

TEST(Correlation, FloatSumsAreNearTheExactOnes)
{
    Random random(14);
    for (int trial = 0; trial < 30; ++trial) {
        const uint32_t N = oddUpTo(random, 9);
        Case<uint8_t, float> c(random, N, N, N * N);
        for (float& weight : c.kernel)
            weight = static_cast<float>(static_cast<int>(random.below(2001)) - 1000) / 7;
        std::vector<float> dst(c.src.size());
        ASSERT_EQ(rvkFilterCorrNxNu8f32C(c.src.data(), c.width, c.height, c.stride(), c.kernel.data(), N, dst.data(),
                                         c.width * 4),
                  RAVIK_SUCCESS);
        for (uint32_t y = 0; y < c.height; ++y)
            for (uint32_t x = 0; x < c.width; ++x) {
                double sum = 0, magnitude = 0;
                for (uint32_t j = 0; j < N; ++j)
                    for (uint32_t i = 0; i < N; ++i) {
                        const double product =
                            double{c.kernel[j * N + i]} * c.at(int64_t{x} + i - N / 2, int64_t{y} + j - N / 2);
                        sum += product;
                        magnitude += std::fabs(product);
                    }
                ASSERT_NEAR(dst[y * c.width + x], sum, magnitude * (N * N + 1) * 0x1p-24) << x << ", " << y;
            }
    }
}

TEST(Correlation, WorkedValues)
{
    // A single pixel is replaced by the turned kernel in a correlation, by the kernel itself in a convolution.
    std::vector<uint8_t> pixel(25, 0), dst(25), expected(25, 0);
    pixel[12] = 1;
    const int16_t kernel[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const auto place = [&](auto valueOf) {
        for (size_t i = 0; i < 9; ++i)
            expected[(1 + i / 3) * 5 + 1 + i % 3] = static_cast<uint8_t>(valueOf(i));
        return expected;
    };
    ASSERT_EQ(rvkFilterCorrNxNu8(pixel.data(), 5, 5, 0, kernel, 3, 0, dst.data(), 0), RAVIK_SUCCESS);
    EXPECT_EQ(dst, place([](size_t i) { return 9 - i; }));
    ASSERT_EQ(rvkFilterConvolveMxNu8(pixel.data(), 5, 5, 0, kernel, 3, 3, 0, dst.data(), 0), RAVIK_SUCCESS);
    EXPECT_EQ(dst, place([](size_t i) { return i + 1; }));

    // M is the width: differences of the neighbours in a row, halved and rounded down. At the ends the nearest pixel
    // stands for the one outside.
    const uint8_t steps[6] = {0, 10, 25, 7, 7, 4};
    const int16_t difference[3] = {1, 0, -1};
    int16_t result[6];
    ASSERT_EQ(rvkFilterConvolveMxNu8s16(steps, 3, 2, 0, difference, 3, 1, 1, result, 0), RAVIK_SUCCESS);
    EXPECT_EQ(std::vector<int16_t>(result, result + 6), (std::vector<int16_t>{5, 12, 7, 0, -2, -2}));

    // One window, one sum: 1 * 9 + 2 * 8 + ... + 9 * 1.
    int16_t numbers[9], sum = 0;
    std::copy_n(kernel, 9, numbers);
    ASSERT_EQ(rvkConvValids16(numbers, 3, 3, 0, kernel, 3, 3, 0, &sum, 0), RAVIK_SUCCESS);
    EXPECT_EQ(sum, 165);

    // 32-bit sums wrap: 2^30 four times is nothing, three times 3 * 2^30 - 2^32, which saturates.
    const int16_t low[3] = {-32768, -32768, -32768};
    ASSERT_EQ(rvkConvValids16(low, 3, 1, 0, low, 3, 1, 0, &sum, 0), RAVIK_SUCCESS);
    EXPECT_EQ(sum, -32768);
    ASSERT_EQ(rvkConvValids16(low, 3, 1, 0, low, 3, 1, 16, &sum, 0), RAVIK_SUCCESS);
    EXPECT_EQ(sum, -16384);
}

// ---- VECTA --------------------------------------------------------------------------------------

// An odd number, at most `most` and the picture's size: small ones and all.
uint32_t kernelSize(Trial& t, uint32_t most)
{
    const uint32_t odd = (std::min(most, t.below(4) ? 9u : 40u) + 1) / 2;
    return 1 + 2 * t.below(odd);
}

template <Slot slot, class S, class D, class Weight>
void expectSquare()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const uint32_t N = kernelSize(t, std::min(t.width, t.height)), shift = t.below(t.below(2) ? 8 : 32);
        const auto src = t.input<S>();
        const auto kernel = t.inputOf<Weight>(N * N, 1);
        const auto dst = t.output<D>();
        if constexpr (std::is_same_v<Weight, float>)
            t.result(function(src.data, t.width, t.height, src.stride, kernel.data, N, dst.data, dst.stride));
        else
            t.result(function(src.data, t.width, t.height, src.stride, kernel.data, N, shift, dst.data, dst.stride));
    });
}

template <Slot slot, class S, class D>
void expectConvolution(bool isValid)
{
    expectVectaEqualsReference<slot>([=](auto function, Trial& t) {
        const uint32_t M = kernelSize(t, t.width), N = kernelSize(t, t.height), shift = t.below(t.below(2) ? 8 : 32);
        const auto src = t.input<S>();
        const auto kernel = t.inputOf<int16_t>(M * N, 1);
        const auto dst = isValid ? t.outputOf<D>(t.width - M + 1, t.height - N + 1) : t.output<D>();
        t.result(function(src.data, t.width, t.height, src.stride, kernel.data, M, N, shift, dst.data, dst.stride));
    });
}

// call(function, trial, src, kernelX, M, kernelY, N, shiftX, shiftY, dst)
template <Slot slot, class T, class Call>
void expectSeparable(uint32_t fixedSize, bool isSquare, Call call)
{
    expectVectaEqualsReference<slot>([=](auto function, Trial& t) {
        t.width = std::max(t.width, fixedSize);
        t.height = std::max(t.height, fixedSize);
        uint32_t M = fixedSize ? fixedSize : kernelSize(t, t.width),
                 N = fixedSize ? fixedSize : kernelSize(t, t.height);
        if (isSquare)
            M = N = std::min(M, N);
        const uint32_t shiftX = t.below(t.below(2) ? 8 : 32), shiftY = t.below(t.below(2) ? 8 : 32);
        const auto src = t.input<T>();
        const auto kernelX = t.inputOf<int16_t>(M, 1), kernelY = t.inputOf<int16_t>(N, 1);
        const auto dst = t.output<T>();
        t.result(call(function, t, src, kernelX.data, M, kernelY.data, N, shiftX, shiftY, dst));
    });
}

template <Slot slot>
void expectFixedSeparable(uint32_t size)
{
    expectSeparable<slot, int16_t>(size, true,
                                   [](auto function, Trial& t, auto src, auto kernelX, uint32_t, auto kernelY, uint32_t,
                                      uint32_t shiftX, uint32_t shiftY, auto dst) {
                                       return function(src.data, t.width, t.height, src.stride, kernelX, kernelY,
                                                       shiftX, shiftY, dst.data, dst.stride);
                                   });
}

TEST(Correlation, VectaEqualsReference)
{
    expectVectaEqualsReference<Slot::rvkFilterCorr3x3s8_v2>([](auto function, Trial& t) {
        t.width = std::max(t.width, 3u);
        t.height = std::max(t.height, 3u);
        const uint32_t shift = t.below(10);
        const auto src = t.input<uint8_t>();
        const auto kernel = t.inputOf<int8_t>(9, 1);
        const auto dst = t.output<uint8_t>();
        t.result(function(src.data, t.width, t.height, src.stride, kernel.data, shift, dst.data, dst.stride));
    });
    expectSquare<Slot::rvkFilterCorrNxNu8, uint8_t, uint8_t, int16_t>();
    expectSquare<Slot::rvkFilterCorrNxNu8s16, uint8_t, int16_t, int16_t>();
    expectSquare<Slot::rvkFilterCorrNxNu8f32, uint8_t, float, float>();
    expectConvolution<Slot::rvkFilterConvolveMxNu8, uint8_t, uint8_t>(false);
    expectConvolution<Slot::rvkFilterConvolveMxNu8s16, uint8_t, int16_t>(false);
    expectConvolution<Slot::rvkConvValids16, int16_t, int16_t>(true);
}

TEST(Correlation, SeparableVectaEqualsReference)
{
    const auto call = [](auto function, Trial& t, auto src, auto kernelX, uint32_t M, auto kernelY, uint32_t N,
                         uint32_t shiftX, uint32_t shiftY, auto dst) {
        return function(src.data, t.width, t.height, src.stride, kernelX, M, kernelY, N, shiftX, shiftY, dst.data,
                        dst.stride);
    };
    expectSeparable<Slot::rvkFilterCorrSepMxNu8, uint8_t>(0, false, call);
    expectSeparable<Slot::rvkFilterConvSepMxNs16, int16_t>(0, false, call);
    expectSeparable<Slot::rvkFilterCorrSepNxNs16, int16_t>(
        0, true,
        [](auto function, Trial& t, auto src, auto kernelX, uint32_t, auto kernelY, uint32_t N, uint32_t shiftX,
           uint32_t shiftY, auto dst) {
            return function(src.data, t.width, t.height, src.stride, kernelX, kernelY, N, shiftX, shiftY, dst.data,
                            dst.stride);
        });
    expectFixedSeparable<Slot::rvkFilterCorrSep9x9s16_v2>(9);
    expectFixedSeparable<Slot::rvkFilterCorrSep11x11s16_v2>(11);
    expectFixedSeparable<Slot::rvkFilterCorrSep13x13s16_v2>(13);
    expectFixedSeparable<Slot::rvkFilterCorrSep15x15s16_v2>(15);
    expectFixedSeparable<Slot::rvkFilterCorrSep17x17s16_v2>(17);
}

// Wider than the strips of columns that vector implementations work in.
TEST(Correlation, VectaEqualsReferenceOnWidePictures)
{
    expectVectaEqualsReference<Slot::rvkFilterConvolveMxNu8>(
        [](auto function, Trial& t) {
            t.width = 500 + t.below(700);
            t.height = 9 + t.below(4);
            const auto src = t.input<uint8_t>();
            const auto kernel = t.inputOf<int16_t>(5 * 7, 1);
            const auto dst = t.output<uint8_t>();
            t.result(function(src.data, t.width, t.height, src.stride, kernel.data, 5, 7, 6, dst.data, dst.stride));
        },
        20);
    expectVectaEqualsReference<Slot::rvkFilterConvSepMxNs16>(
        [](auto function, Trial& t) {
            t.width = 500 + t.below(700);
            t.height = 9 + t.below(4);
            const auto src = t.input<int16_t>();
            const auto kernelX = t.inputOf<int16_t>(7, 1), kernelY = t.inputOf<int16_t>(5, 1);
            const auto dst = t.output<int16_t>();
            t.result(function(src.data, t.width, t.height, src.stride, kernelX.data, 7, kernelY.data, 5, 9, 9, dst.data,
                              dst.stride));
        },
        20);
    expectVectaEqualsReference<Slot::rvkFilterCorrNxNu8f32>(
        [](auto function, Trial& t) {
            t.width = 500 + t.below(700);
            t.height = 5 + t.below(4);
            const auto src = t.input<uint8_t>();
            const auto kernel = t.inputOf<float>(25, 1);
            const auto dst = t.output<float>();
            t.result(function(src.data, t.width, t.height, src.stride, kernel.data, 5, dst.data, dst.stride));
        },
        20);
}

// ---- entries ------------------------------------------------------------------------------------

TEST(Correlation, BadArgumentsAreRefusedAndWriteNothing)
{
    constexpr uint32_t width = 20, height = 20;
    std::vector<int16_t> src(width * height, 1), dst(width * height, 77), weights(width * width, 1);
    const std::vector<int16_t> untouched = dst;
    const auto* bytes = reinterpret_cast<const uint8_t*>(src.data());
    auto* byteDst = reinterpret_cast<uint8_t*>(dst.data());
    const int16_t* k = weights.data();

    const auto square = [&](uint32_t w, uint32_t h, uint32_t srcStride, uint32_t dstStride, uint32_t N,
                            uint32_t shift) {
        return rvkFilterCorrNxNu8s16(bytes, w, h, srcStride, k, N, shift, dst.data(), dstStride);
    };
    EXPECT_EQ(square(0, height, 0, 0, 3, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, 0, 0, 0, 3, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, height, width - 1, 0, 3, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, height, 0, 2 * width - 1, 3, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, height, 0, 0, 0, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, height, 0, 0, 4, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, height, 0, 0, 21, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(5, height, 0, 0, 7, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, 5, 0, 0, 7, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, height, 0, 0, 3, 32), RAVIK_EBADPARAM);
    EXPECT_EQ(square(0x80000000, 3, 0, 0, 3, 0), RAVIK_EBADPARAM); // rows of 2^32 bytes
    EXPECT_EQ(square(width, 0x20000000, 0, 0, 3, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(square(width, height, 0x10000000, 0, 3, 0), RAVIK_EBADPARAM);

    EXPECT_EQ(rvkFilterCorrNxNu8s16(nullptr, 20, 20, 0, k, 3, 0, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrNxNu8s16(bytes, 20, 20, 0, nullptr, 3, 0, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrNxNu8s16(bytes, 20, 20, 0, k, 3, 0, nullptr, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrNxNu8(byteDst, 20, 20, 0, k, 3, 0, byteDst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterConvolveMxNu8(bytes, 20, 20, 0, k, 3, 4, 0, byteDst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterConvolveMxNu8s16(bytes, 20, 20, 0, k, 21, 3, 0, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkConvValids16(src.data(), 20, 20, 0, k, 21, 3, 0, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkConvValids16(src.data(), 20, 20, 0, k, 3, 3, 0, dst.data(), 35), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorr3x3s8(bytes, 20, 2, reinterpret_cast<const int8_t*>(k), 0, byteDst), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorr3x3s8_v2(bytes, 20, 20, 0, nullptr, 0, byteDst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrSepMxNu8(bytes, 20, 20, 0, nullptr, 3, k, 3, 0, 0, byteDst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrSepMxNu8(bytes, 20, 20, 0, k, 3, nullptr, 3, 0, 0, byteDst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterConvSepMxNs16(src.data(), 20, 20, 0, k, 3, k, 3, 32, 0, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterConvSepMxNs16(src.data(), 20, 20, 0, k, 3, k, 3, 0, 32, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrSepNxNs16(src.data(), 20, 20, 39, k, k, 3, 0, 0, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrSep9x9s16(src.data(), 20, 8, k, k, 0, 0, dst.data()), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrSep17x17s16_v2(src.data(), 16, 20, 0, k, k, 0, 0, dst.data(), 0), RAVIK_EBADPARAM);
    EXPECT_EQ(dst, untouched);
    EXPECT_TRUE(logLines.empty());
}

TEST(Correlation, FormsWithoutStridesWorkOnPackedRows)
{
    Random random(5);
    std::vector<int16_t> src(23 * 19), packed(src.size()), strided(src.size()), weights(17);
    for (int16_t& value : src)
        value = static_cast<int16_t>(random.next());
    for (int16_t& weight : weights)
        weight = static_cast<int16_t>(random.below(9));
    const int16_t* k = weights.data();
    const auto same = [&](auto function, auto function_v2) {
        packed.assign(src.size(), 7);
        strided.assign(src.size(), 7);
        EXPECT_EQ(function(src.data(), 23, 19, k, k, 5, 5, packed.data()), RAVIK_SUCCESS);
        EXPECT_EQ(function_v2(src.data(), 23, 19, 0, k, k, 5, 5, strided.data(), 46), RAVIK_SUCCESS);
        return packed == strided && packed != std::vector<int16_t>(src.size(), 7);
    };
    EXPECT_TRUE(same(rvkFilterCorrSep9x9s16, rvkFilterCorrSep9x9s16_v2));
    EXPECT_TRUE(same(rvkFilterCorrSep11x11s16, rvkFilterCorrSep11x11s16_v2));
    EXPECT_TRUE(same(rvkFilterCorrSep13x13s16, rvkFilterCorrSep13x13s16_v2));
    EXPECT_TRUE(same(rvkFilterCorrSep15x15s16, rvkFilterCorrSep15x15s16_v2));
    EXPECT_TRUE(same(rvkFilterCorrSep17x17s16, rvkFilterCorrSep17x17s16_v2));
    const auto* bytes = reinterpret_cast<const uint8_t*>(src.data());
    const int8_t kernel[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1};
    std::vector<uint8_t> packedBytes(23 * 19), stridedBytes(23 * 19);
    EXPECT_EQ(rvkFilterCorr3x3s8(bytes, 23, 19, kernel, 4, packedBytes.data()), RAVIK_SUCCESS);
    EXPECT_EQ(rvkFilterCorr3x3s8_v2(bytes, 23, 19, 23, kernel, 4, stridedBytes.data(), 0), RAVIK_SUCCESS);
    EXPECT_EQ(packedBytes, stridedBytes);
}

// Each scratch buffer fails in turn: nothing is written, nothing stays taken.
template <Slot slot, class Call>
void expectNoResources(bool referenceHasScratch, Call call)
{
    static int allowed, live;
    static const SystemAllocator system = systemAllocator;
    const auto runWith = [&](int allocations, auto function) {
        std::vector<int16_t> dst(81, 77);
        allowed = allocations;
        live = 0;
        systemAllocator = {[](size_t size) -> void* { return allowed-- > 0 ? ++live, malloc(size) : nullptr; },
                           [](void* block) {
                               live -= block != nullptr;
                               free(block);
                           }};
        const rvkStatus status = call(function, dst.data());
        systemAllocator = system;
        EXPECT_EQ(live, 0);
        EXPECT_EQ(dst == std::vector<int16_t>(81, 77), status == RAVIK_ENORES);
        return status;
    };
    const auto expectFailures = [&](auto function) {
        int allocations = 0;
        while (runWith(allocations, function) == RAVIK_ENORES)
            ASSERT_LT(++allocations, 9);
        EXPECT_GT(allocations, 0);
    };
    if (referenceHasScratch)
        expectFailures(referenceOf<slot>());
    forEachVecta<slot>([&](const char*, auto function) { expectFailures(function); });
}

TEST(Correlation, ReportsMissingScratchMemory)
{
    const int16_t src[81] = {9}, kernel[9] = {1, 2, 3};
    const uint8_t bytes[81] = {9};
    const float weights[9] = {1, 2, 3};
    expectNoResources<Slot::rvkFilterCorrSepNxNs16>(
        true, [&](auto function, int16_t* dst) { return function(src, 9, 9, 18, kernel, kernel, 3, 0, 0, dst, 18); });
    expectNoResources<Slot::rvkFilterCorrNxNu8s16>(
        false, [&](auto function, int16_t* dst) { return function(bytes, 9, 9, 9, kernel, 3, 0, dst, 18); });
    expectNoResources<Slot::rvkFilterCorrNxNu8f32>(false, [&](auto function, int16_t* dst) {
        return function(bytes, 9, 3, 9, weights, 3, reinterpret_cast<float*>(dst), 36);
    });
}

} // namespace
