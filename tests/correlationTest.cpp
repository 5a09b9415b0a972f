#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

// ---- the definition, output by output -----------------------------------------------------------

// An exact sum as 32 bits hold it, shifted down and clamped.
template <class D>
D stored(int64_t sum, uint32_t shift)
{
    const int64_t wrapped = static_cast<int32_t>(static_cast<uint32_t>(sum));
    const int64_t divisor = int64_t{1} << shift;
    const int64_t quotient = wrapped / divisor - (wrapped % divisor < 0);
    return static_cast<D>(std::clamp<int64_t>(quotient, std::numeric_limits<D>::min(), std::numeric_limits<D>::max()));
}

template <class D, class S, class Weight>
Picture<D> correlated(const Picture<S>& src, const std::vector<Weight>& kernel, uint32_t M, uint32_t N, uint32_t shift)
{
    return pictureOf<D>(src.width, src.height, [&](int x, int y) {
        const auto window = windowOf(src, x, y, static_cast<int>(M), static_cast<int>(N), Beyond::nearest);
        return stored<D>(weightedSum(window, kernel), shift);
    });
}

enum class Kernel { asItIs, turned };

template <class Weight>
std::vector<Weight> weightsOf(const Weight* kernel, uint32_t count, Kernel kind)
{
    std::vector<Weight> weights(kernel, kernel + count);
    if (kind == Kernel::turned)
        std::reverse(weights.begin(), weights.end());
    return weights;
}

// Along the rows first, then down the columns.
template <class D, class S>
Picture<D> correlatedTwice(const Picture<S>& src, const int16_t* kernelX, uint32_t M, const int16_t* kernelY,
                           uint32_t N, uint32_t shiftX, uint32_t shiftY, Kernel kind)
{
    const auto rowSums = correlated<int16_t>(src, weightsOf(kernelX, M, kind), M, 1, shiftX);
    return correlated<D>(rowSums, weightsOf(kernelY, N, kind), 1, N, shiftY);
}

// ---- arguments of the calls ----

// They stay until the next ones are drawn.
template <class Weight>
const Weight* drawWeights(Random& random, uint32_t count)
{
    static std::vector<Weight> weights;
    const bool areMeans = random.below(4) == 0; // no sum is negative, or more than 16 bits hold
    const auto content = static_cast<Content>(random.below(static_cast<uint32_t>(Content::constant)));
    weights.resize(count);
    for (Weight& weight : weights)
        weight = areMeans ? static_cast<Weight>(random.below(1 + 256 / count)) : drawElement<Weight>(random, content);
    return weights.data();
}

uint32_t drawOdd(Random& random, uint32_t most)
{
    return 1 + 2 * random.below((std::min(most, 9u) + 1) / 2);
}

uint32_t drawShift(Random& random)
{
    return random.below(random.below(2) ? 12 : 32);
}

constexpr auto drawMxN = [](Random& random, const auto& src) {
    const uint32_t M = drawOdd(random, src.columns()), N = drawOdd(random, src.rows());
    return std::tuple(drawWeights<int16_t>(random, M * N), M, N, drawShift(random));
};

constexpr auto drawSeparable = [](Random& random, const auto& src) {
    const uint32_t M = drawOdd(random, src.columns()), N = drawOdd(random, src.rows());
    const int16_t* const kernel = drawWeights<int16_t>(random, M + N);
    return std::tuple(kernel, M, kernel + M, N, drawShift(random), drawShift(random));
};

constexpr int kTrials = 40;

TEST(Correlation, FollowsTheDefinition)
{
    expectFiltered<Slot::rvkFilterCorr3x3s8_v2, uint8_t>(
        3, [](Random& random, auto&) { return std::tuple(drawWeights<int8_t>(random, 9), drawShift(random)); },
        [](const auto& src, const int8_t* kernel, uint32_t shift) {
            return correlated<uint8_t>(src, weightsOf(kernel, 9, Kernel::asItIs), 3, 3, shift);
        },
        kTrials);
    const auto draw = [](Random& random, const auto& src) {
        const uint32_t N = drawOdd(random, std::min(src.columns(), src.rows()));
        return std::tuple(drawWeights<int16_t>(random, N * N), N, drawShift(random));
    };
    const auto square = []<class D>(D) {
        return [](const auto& src, const int16_t* kernel, uint32_t N, uint32_t shift) {
            return correlated<D>(src, weightsOf(kernel, N * N, Kernel::asItIs), N, N, shift);
        };
    };
    expectFiltered<Slot::rvkFilterCorrNxNu8, uint8_t>(1, draw, square(uint8_t{}), kTrials);
    expectFiltered<Slot::rvkFilterCorrNxNu8s16, uint8_t, int16_t>(1, draw, square(int16_t{}), kTrials);
    const auto turned = []<class D>(D) {
        return [](const auto& src, const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift) {
            return correlated<D>(src, weightsOf(kernel, M * N, Kernel::turned), M, N, shift);
        };
    };
    expectFiltered<Slot::rvkFilterConvolveMxNu8, uint8_t>(1, drawMxN, turned(uint8_t{}), kTrials);
    expectFiltered<Slot::rvkFilterConvolveMxNu8s16, uint8_t, int16_t>(1, drawMxN, turned(int16_t{}), kTrials);
    expectFiltered<Slot::rvkConvValids16, int16_t>(
        1, drawMxN,
        [](const auto& src, const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift) { // the interior alone
            const auto all = correlated<int16_t>(src, weightsOf(kernel, M * N, Kernel::turned), M, N, shift);
            const int left = static_cast<int>(M / 2), top = static_cast<int>(N / 2);
            return pictureOf<int16_t>(src.width, src.height, [&](int x, int y) {
                return x < src.width - 2 * left && y < src.height - 2 * top ? all.at(x + left, y + top) : 77;
            });
        },
        kTrials);
}

template <Slot slot>
void expectFixedSize(uint32_t size)
{
    expectFiltered<slot, int16_t>(
        static_cast<int>(size),
        [=](Random& random, auto&) {
            const int16_t* const kernel = drawWeights<int16_t>(random, 2 * size);
            return std::tuple(kernel, kernel + size, drawShift(random), drawShift(random));
        },
        [=](const auto& src, auto* kernelX, auto* kernelY, uint32_t shiftX, uint32_t shiftY) {
            return correlatedTwice<int16_t>(src, kernelX, size, kernelY, size, shiftX, shiftY, Kernel::asItIs);
        });
}

TEST(Correlation, SeparableFollowsTheDefinition)
{
    expectFiltered<Slot::rvkFilterCorrSepMxNu8, uint8_t>(
        1, drawSeparable,
        [](const auto&... arguments) { return correlatedTwice<uint8_t>(arguments..., Kernel::asItIs); }, kTrials);
    expectFiltered<Slot::rvkFilterConvSepMxNs16, int16_t>(
        1, drawSeparable,
        [](const auto&... arguments) { return correlatedTwice<int16_t>(arguments..., Kernel::turned); }, kTrials);
    expectFiltered<Slot::rvkFilterCorrSepNxNs16, int16_t>(
        1,
        [](Random& random, const auto& src) {
            const uint32_t N = drawOdd(random, std::min(src.columns(), src.rows()));
            const int16_t* const kernel = drawWeights<int16_t>(random, 2 * N);
            return std::tuple(kernel, kernel + N, N, drawShift(random), drawShift(random));
        },
        [](const auto& src, auto* kernelX, auto* kernelY, uint32_t N, uint32_t shiftX, uint32_t shiftY) {
            return correlatedTwice<int16_t>(src, kernelX, N, kernelY, N, shiftX, shiftY, Kernel::asItIs);
        },
        kTrials);
    expectFixedSize<Slot::rvkFilterCorrSep9x9s16_v2>(9);
    expectFixedSize<Slot::rvkFilterCorrSep11x11s16_v2>(11);
    expectFixedSize<Slot::rvkFilterCorrSep13x13s16_v2>(13);
    expectFixedSize<Slot::rvkFilterCorrSep15x15s16_v2>(15);
    expectFixedSize<Slot::rvkFilterCorrSep17x17s16_v2>(17);
}

TEST(Correlation, FloatSumsAreNearTheExactOnes)
{
    Random random(14);
    for (int trial = 0; trial < 30; ++trial) {
        const uint32_t N = 1 + 2 * random.below(5);
        const int n = static_cast<int>(N);
        const auto src = randomPicture<uint8_t>(random, n + static_cast<int>(random.below(20)),
                                                n + static_cast<int>(random.below(20)));
        std::vector<float> kernel(N * N);
        for (float& weight : kernel)
            weight = static_cast<float>(static_cast<int>(random.below(2001)) - 1000) / 7;
        const auto dst = filtered<float>(rvkFilterCorrNxNu8f32C, src, std::as_const(kernel).data(), N);
        for (int y = 0; y < src.height; ++y)
            for (int x = 0; x < src.width; ++x) {
                const auto window = windowOf(src, x, y, n, n, Beyond::nearest);
                double sum = 0, magnitude = 0;
                for (size_t i = 0; i < window.size(); ++i) {
                    sum += double{kernel[i]} * window[i];
                    magnitude += std::fabs(double{kernel[i]} * window[i]);
                }
                ASSERT_NEAR(double{dst.at(x, y)}, sum, magnitude * (N * N + 1) * 0x1p-24) << x << ", " << y;
            }
    }
}

TEST(Correlation, WorkedValues)
{
    // A single pixel is replaced by the turned kernel in a correlation, by the kernel itself in a convolution.
    Picture<uint8_t> pixel(5, 5);
    pixel.at(2, 2) = 1;
    const int16_t numbers[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9}, *const kernel = numbers;
    const auto place = [&](auto valueOf) {
        Picture<uint8_t> expected(5, 5);
        for (int i = 0; i < 9; ++i)
            expected.at(1 + i % 3, 1 + i / 3) = static_cast<uint8_t>(valueOf(i));
        return expected;
    };
    EXPECT_EQ(filtered<uint8_t>(rvkFilterCorrNxNu8, pixel, kernel, 3u, 0u), place([](int i) { return 9 - i; }));
    EXPECT_EQ(filtered<uint8_t>(rvkFilterConvolveMxNu8, pixel, kernel, 3u, 3u, 0u), place([](int i) { return i + 1; }));

    // M is the width: differences of the neighbours in a row, halved and rounded down. At the ends the nearest pixel
    // stands for the one outside.
    Picture<uint8_t> steps(3, 2);
    steps.pixels = {0, 10, 25, 7, 7, 4};
    const int16_t weights[3] = {1, 0, -1}, *const difference = weights;
    EXPECT_EQ(filtered<int16_t>(rvkFilterConvolveMxNu8s16, steps, difference, 3u, 1u, 1u).pixels,
              (std::vector<int16_t>{5, 12, 7, 0, -2, -2}));

    // One window, one sum: 1 * 9 + 2 * 8 + ... + 9 * 1.
    int16_t sum = 0;
    ASSERT_EQ(rvkConvValids16(numbers, 3, 3, 0, kernel, 3, 3, 0, &sum, 0), RAVIK_SUCCESS);
    EXPECT_EQ(sum, 165);

    // 32-bit sums wrap: 2^30 four times is nothing, three times 3 * 2^30 - 2^32, which saturates.
    const int16_t low[3] = {-32768, -32768, -32768};
    ASSERT_EQ(rvkConvValids16(low, 3, 1, 0, low, 3, 1, 0, &sum, 0), RAVIK_SUCCESS);
    EXPECT_EQ(sum, -32768);
    ASSERT_EQ(rvkConvValids16(low, 3, 1, 0, low, 3, 1, 16, &sum, 0), RAVIK_SUCCESS);
    EXPECT_EQ(sum, -16384);
}

// Kernels that outgrow the ring of rows that vector implementations keep at hand.
TEST(Correlation, VectaEqualsReferenceForLargeKernels)
{
    const auto sides = [](Random& random, const auto& src) {
        const auto odd = [&](uint32_t size) { return 1 + 2 * random.below((std::min(size, 39u) + 1) / 2); };
        const uint32_t M = odd(src.columns());
        return std::pair(M, odd(src.rows()));
    };
    const auto mxn = [=](Random& random, const auto& src) {
        const auto [M, N] = sides(random, src);
        return std::tuple(drawWeights<int16_t>(random, M * N), M, N, random.below(20));
    };
    expectVectaEqualsReference<Slot::rvkFilterConvolveMxNu8, uint8_t>(9, mxn);
    expectVectaEqualsReference<Slot::rvkFilterConvolveMxNu8s16, uint8_t, int16_t>(9, mxn);
    expectVectaEqualsReference<Slot::rvkConvValids16, int16_t>(9, mxn);
    expectVectaEqualsReference<Slot::rvkFilterCorrNxNu8f32, uint8_t, float>(9, [=](Random& random, const auto& src) {
        const auto [M, N] = sides(random, src);
        return std::tuple(drawWeights<float>(random, M * N), std::min(M, N));
    });
    const auto separable = [=](Random& random, const auto& src) {
        const auto [M, N] = sides(random, src);
        const int16_t* const kernel = drawWeights<int16_t>(random, M + N);
        return std::tuple(kernel, M, kernel + M, N, random.below(20), random.below(20));
    };
    expectVectaEqualsReference<Slot::rvkFilterCorrSepMxNu8, uint8_t>(9, separable);
    expectVectaEqualsReference<Slot::rvkFilterConvSepMxNs16, int16_t>(9, separable);
}

TEST(Correlation, RefusesImagesOf4GiB)
{
    const uint8_t src[9] = {9};
    const int16_t kernel[9] = {1};
    int16_t dst[9] = {77};
    EXPECT_EQ(rvkFilterCorrNxNu8s16(src, 3, 0x1000, 0x100000, kernel, 3, 0, dst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCorrNxNu8s16(src, 3, 0x1000, 0, kernel, 3, 0, dst, 0x100000), RAVIK_EBADPARAM);
    EXPECT_EQ(dst[0], 77);
}

} // namespace
