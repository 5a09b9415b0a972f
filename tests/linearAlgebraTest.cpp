#include "support/implementations.h"
#include "support/random.h"

#include <cfloat>
#include <cmath>
#include <functional>
#if RVK_TEST_OPENCV
#include <opencv2/core.hpp>
#endif

using namespace test;

namespace {

// A matrix whose rows have a gap between them.
template <class T>
struct Matrix
{
    uint32_t width, height, stride; // in elements
    std::vector<T> elements;

    Matrix(uint32_t columns, uint32_t rows, uint32_t gap = 0)
        : width(columns), height(rows), stride(columns + gap), elements(size_t{stride} * rows, T{77})
    {
    }
    T& at(size_t y, size_t x) { return elements[y * stride + x]; }
    const T& at(size_t y, size_t x) const { return elements[y * stride + x]; }
    T* data() { return elements.data(); }
    const T* data() const { return elements.data(); }
    uint32_t bytes() const { return static_cast<uint32_t>(stride * sizeof(T)); }
    double norm() const
    {
        double sum = 0;
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                sum += double{at(y, x)} * at(y, x);
        return std::sqrt(sum);
    }
};
using Floats = Matrix<float>;

float uniform(Random& random, float low, float high)
{
    return low + (high - low) * static_cast<float>(random.below(1 << 24)) * 0x1p-24f;
}

Floats drawMatrix(Random& random, uint32_t width, uint32_t height, float magnitude = 1)
{
    Floats a(width, height, random.below(3));
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            a.at(y, x) = uniform(random, -magnitude, magnitude);
    return a;
}

// ---- products ----

template <Slot slot, class T, class D, class Sum>
void expectProducts(const std::function<T(Random&)>& draw)
{
    Random random(1);
    for (int trial = 0; trial < 60; ++trial) {
        const uint32_t depth = 1 + random.below(trial % 8 ? 40 : 700), height = 1 + random.below(11),
                       width = 1 + random.below(trial % 3 ? 40 : 200);
        Matrix<T> a(depth, height, random.below(4)), b(width, depth, random.below(4));
        for (Matrix<T>* m : {&a, &b})
            for (T& element : m->elements)
                element = draw(random);
        forEachImplementation<slot>([&](const char* name, auto function) {
            Matrix<D> dst(width, height, 1);
            ASSERT_EQ(function(a.data(), depth, height, a.bytes(), b.data(), width, b.bytes(), dst.data(), dst.bytes()),
                      RAVIK_SUCCESS);
            for (uint32_t y = 0; y < height; ++y) {
                ASSERT_EQ(dst.at(y, width), D{77}) << name << " writes behind row " << y;
                for (uint32_t x = 0; x < width; ++x) {
                    Sum sum = 0;
                    for (uint32_t k = 0; k < depth; ++k)
                        sum = sum + static_cast<Sum>(Sum{a.at(y, k)} * Sum{b.at(k, x)});
                    ASSERT_EQ(dst.at(y, x), static_cast<D>(sum)) << name << ", " << width << "x" << height << ", depth "
                                                                 << depth << ", element " << y << ", " << x;
                }
            }
        });
    }
}

TEST(LinearAlgebra, Products)
{
    expectProducts<Slot::rvkMatrixMultiplyf32, float, float, float>(
        [](Random& random) { return uniform(random, -1, 1) * (random.below(9) ? 1.0f : 1e6f); });
    expectProducts<Slot::rvkMatrixMultiplys8s32, int8_t, int32_t, int64_t>(
        [](Random& random) { return static_cast<int8_t>(random.below(4) ? random.below(256) : 128); });
    const float a[3] = {1, 2, 3}, b[3] = {-4, 5, 7};
    float dst[3] = {2, 3, 4};
    rvkCrossProduct3x1f32(a, b, dst);
    EXPECT_EQ(std::vector<float>(dst, dst + 3), std::vector<float>({-1, -19, 13}));
    rvkCrossProduct3x1f32(dst, a, dst);
    EXPECT_EQ(std::vector<float>(dst, dst + 3), std::vector<float>({-83, 16, 17})) << "in place";
}

// ---- singular values ----

struct Svd
{
    std::vector<float> w;
    Floats U, Vt;

    explicit Svd(const Floats& a)
        : w(std::min(a.width, a.height)), U(std::min(a.width, a.height), a.height, 1),
          Vt(a.width, std::min(a.width, a.height), 2)
    {
        EXPECT_EQ(
            rvkSVDf32(a.data(), a.width, a.height, a.bytes(), w.data(), U.data(), U.bytes(), Vt.data(), Vt.bytes()),
            RAVIK_SUCCESS);
    }
};

// The largest difference of the dot products of directions from those of orthonormal ones.
double obliqueness(uint32_t count, uint32_t length, const std::function<double(uint32_t, uint32_t)>& element)
{
    double worst = 0;
    for (uint32_t i = 0; i < count; ++i)
        for (uint32_t j = 0; j <= i; ++j) {
            double dot = i == j ? -1 : 0;
            for (uint32_t x = 0; x < length; ++x)
                dot += element(i, x) * element(j, x);
            worst = std::max(worst, std::fabs(dot));
        }
    return worst;
}

void expectDecomposition(const Floats& a)
{
    const Svd svd(a);
    const auto k = static_cast<uint32_t>(svd.w.size());
    Floats difference(a.width, a.height);
    for (uint32_t y = 0; y < a.height; ++y)
        for (uint32_t x = 0; x < a.width; ++x) {
            double element = -double{a.at(y, x)};
            for (uint32_t i = 0; i < k; ++i)
                element += double{svd.U.at(y, i)} * svd.w[i] * svd.Vt.at(i, x);
            difference.at(y, x) = static_cast<float>(element);
        }
    const double tolerance = k * 0x1p-20;
    EXPECT_LE(difference.norm(), tolerance * a.norm());
    EXPECT_LE(obliqueness(k, a.height, [&](uint32_t i, uint32_t y) { return svd.U.at(y, i); }), tolerance);
    EXPECT_LE(obliqueness(k, a.width, [&](uint32_t i, uint32_t x) { return svd.Vt.at(i, x); }), tolerance);
    for (uint32_t i = 0; i < k; ++i) {
        EXPECT_GE(svd.w[i], i + 1 < k ? svd.w[i + 1] : 0);
        float largest = 0;
        for (uint32_t x = 0; x < a.width; ++x)
            largest = std::fabs(svd.Vt.at(i, x)) > std::fabs(largest) ? svd.Vt.at(i, x) : largest;
        EXPECT_GT(largest, 0) << "row " << i << " of Vt";
    }
#if RVK_TEST_OPENCV
    cv::Mat w;
    cv::SVD::compute(
        cv::Mat(static_cast<int>(a.height), static_cast<int>(a.width), CV_32F, const_cast<float*>(a.data()), a.bytes()),
        w, cv::SVD::NO_UV);
    for (uint32_t i = 0; i < k; ++i)
        EXPECT_NEAR(svd.w[i], w.at<float>(static_cast<int>(i)), 1e-5 * svd.w[i] + 2e-6 * svd.w[0]) << i;
#endif
}

TEST(LinearAlgebra, SingularValues)
{
    Random random(2);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        const uint32_t most = trial % 20 ? 14 : 50;
        Floats a = drawMatrix(random, 1 + random.below(most), 1 + random.below(most));
        const uint32_t kind = random.below(6);
        for (uint32_t y = 0; y < a.height; ++y)
            for (uint32_t x = 0; x < a.width; ++x)
                switch (kind) {
                case 0: // of rank 2 at most
                    a.at(y, x) = static_cast<float>(y % 2 + 1) * static_cast<float>(x % 3);
                    break;
                case 1: // small whole numbers: equal columns, zeros
                    a.at(y, x) = std::rint(a.at(y, x));
                    break;
                case 2: // badly scaled
                    a.at(y, x) *= std::pow(10.0f, static_cast<float>(x % 11) - 5 - static_cast<float>(y % 4));
                    break;
                default:
                    break;
                }
        expectDecomposition(a);
    }
    expectDecomposition(drawMatrix(random, 120, 90));
    Floats identity(5, 5), huge(2, 3);
    for (uint32_t i = 0; i < 25; ++i)
        identity.at(i / 5, i % 5) = i / 5 == i % 5;
    expectDecomposition(identity);
    std::fill(huge.elements.begin(), huge.elements.end(), 1e37f);
    expectDecomposition(huge);
}

TEST(LinearAlgebra, SingularValuesOfBadMatrices)
{
    float w[3] = {7, 7, 7}, U[9] = {7}, Vt[9] = {7};
    for (const float bad : {NAN, INFINITY, -INFINITY}) {
        const float a[9] = {1, 2, 3, 4, bad, 5, 6, 7, 8};
        EXPECT_EQ(rvkSVDf32(a, 3, 3, 0, w, U, 0, Vt, 0), RAVIK_EFAIL);
    }
    const float tooLarge[9] = {FLT_MAX, FLT_MAX, 0, FLT_MAX, FLT_MAX, 0, 0, 0, 0}, diagonal[4] = {0, -2, 3, 0};
    EXPECT_EQ(rvkSVDf32(tooLarge, 3, 3, 0, w, U, 0, Vt, 0), RAVIK_EFAIL) << "the singular value is no float";
    for (const uint32_t stride : {4u, 10u, 1u << 31})
        EXPECT_EQ(rvkSVDf32(diagonal, 2, 2, stride, w, U, 0, Vt, 0), RAVIK_EBADPARAM);
    EXPECT_TRUE(w[0] == 7 && U[0] == 7 && Vt[0] == 7) << "nothing is written";
    EXPECT_EQ(rvkSVDf32(diagonal, 2, 2, 0, w, nullptr, 0, Vt, 0), RAVIK_SUCCESS);
    EXPECT_EQ(std::vector<float>(Vt, Vt + 4), std::vector<float>({1, 0, 0, 1}));
    EXPECT_EQ(rvkSVDf32(diagonal, 2, 2, 0, w, U, 0, nullptr, 0), RAVIK_SUCCESS);
    EXPECT_EQ(std::vector<float>(U, U + 4), std::vector<float>({0, -1, 1, 0}));
}

// ---- equations ----

using Solver = decltype(rvkSolveLUf32);
rvkStatus leastSquares(const float* A, uint32_t n, uint32_t stride, const float* b, float* x)
{
    return rvkSolvef32(A, n, n, stride, b, x);
}

// |A * x - b| and |A| * |x| + |b| of equation y.
struct Residual
{
    double error, magnitude;

    Residual(const Floats& a, const std::vector<float>& x, const std::vector<float>& b, uint32_t y)
        : error(-double{b[y]}), magnitude(std::fabs(double{b[y]}))
    {
        for (uint32_t k = 0; k < a.width; ++k) {
            error += double{a.at(y, k)} * x[k];
            magnitude += std::fabs(double{a.at(y, k)} * x[k]);
        }
        error = std::fabs(error);
    }
};

std::vector<float> drawVector(Random& random, uint32_t n)
{
    std::vector<float> v(n);
    for (float& element : v)
        element = uniform(random, -3, 3);
    return v;
}

// Elementwise, or by norms.
void expectSolution(Solver* solve, const Floats& a, const std::vector<float>& b, bool isElementwise)
{
    std::vector<float> x = b; // in place
    ASSERT_EQ(solve(a.data(), a.width, a.bytes(), b.data(), x.data()), RAVIK_SUCCESS);
    double errors = 0, magnitudes = 0;
    for (uint32_t y = 0; y < a.height; ++y) {
        const Residual r(a, x, b, y);
        if (isElementwise) {
            EXPECT_LE(r.error, 0x1p-20 * r.magnitude) << "equation " << y;
        }
        errors += r.error * r.error;
        magnitudes += r.magnitude * r.magnitude;
    }
    EXPECT_LE(std::sqrt(errors), 0x1p-20 * std::sqrt(magnitudes));
}

TEST(LinearAlgebra, EquationsHaveTheirSolution)
{
    Random random(3);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        const uint32_t n = 1 + random.below(trial % 20 ? 14 : 60);
        const std::vector<float> b = drawVector(random, n);
        Floats any = drawMatrix(random, n, n, trial % 7 ? 1.0f : 1e15f), symmetric = any;
        for (uint32_t y = 0; y < n; ++y)
            for (uint32_t x = 0; x < y; ++x)
                symmetric.at(x, y) = symmetric.at(y, x);
        expectSolution(rvkSolveLUf32, any, b, true);
        expectSolution(leastSquares, any, b, false);
        expectSolution(rvkSolveLDLf32, symmetric, b, false);
        if (n % 2 == 0) { // pivots of two rows
            for (uint32_t i = 0; i < n; ++i)
                symmetric.at(i, i) = 0;
            expectSolution(rvkSolveLDLf32, symmetric, b, false);
        }
        for (uint32_t i = 0; i < n; ++i)
            symmetric.at(i, i) = 2 * static_cast<float>(n) * (trial % 7 ? 1.0f : 1e15f);
        expectSolution(rvkSolveCholeskyf32, symmetric, b, true);
        std::vector<float> x(n), y(n);
        ASSERT_EQ(rvkSolveLDLf32(symmetric.data(), n, symmetric.bytes(), b.data(), x.data()), RAVIK_SUCCESS);
        for (uint32_t i = 0; i < n * n; ++i) // what is above the diagonal is not read
            if (i % n > i / n)
                symmetric.at(i / n, i % n) = NAN;
        for (Solver* solve : {rvkSolveCholeskyf32, rvkSolveLDLf32}) {
            ASSERT_EQ(solve(symmetric.data(), n, symmetric.bytes(), b.data(), y.data()), RAVIK_SUCCESS);
            for (uint32_t i = 0; i < n; ++i)
                EXPECT_NEAR(x[i], y[i], 1e-6 * std::fabs(x[i]));
        }
    }
}

TEST(LinearAlgebra, HilbertsMatrixIsSolved)
{
    Floats hilbert(5, 5);
    std::vector<float> b(5, 0), exact = {1, -2, 3, -4, 5};
    for (uint32_t y = 0; y < 5; ++y)
        for (uint32_t x = 0; x < 5; ++x)
            hilbert.at(y, x) = 2520.0f / static_cast<float>(x + y + 1); // whole numbers
    for (uint32_t y = 0; y < 5; ++y)
        for (uint32_t x = 0; x < 5; ++x)
            b[y] += hilbert.at(y, x) * exact[x];
    for (Solver* solve : {rvkSolveLUf32, rvkSolveCholeskyf32, rvkSolveLDLf32, leastSquares}) {
        std::vector<float> x(5);
        EXPECT_EQ(solve(hilbert.data(), 5, 0, b.data(), x.data()), RAVIK_SUCCESS);
        for (uint32_t i = 0; i < 5; ++i)
            EXPECT_NEAR(x[i], exact[i], 1e-6);
    }
}

TEST(LinearAlgebra, LeastSquaresAreNormalToTheMatrix)
{
    Random random(4);
    for (int trial = 0; trial < 200; ++trial) {
        const uint32_t width = 1 + random.below(9), height = width + random.below(trial % 9 ? 9 : 90);
        Floats a = drawMatrix(random, width, height);
        if (trial % 3 == 0)
            for (uint32_t y = 0; y < height; ++y) // columns that are badly scaled
                a.at(y, 0) *= 1e-4f;
        const std::vector<float> b = drawVector(random, height);
        std::vector<float> x(width);
        ASSERT_EQ(rvkSolvef32(a.data(), width, height, a.bytes(), b.data(), x.data()), RAVIK_SUCCESS);
        double errors = 0, magnitudes = 0;
        for (uint32_t k = 0; k < width; ++k) {
            double error = 0, magnitude = 0;
            for (uint32_t y = 0; y < height; ++y) {
                double residual = -double{b[y]};
                for (uint32_t j = 0; j < width; ++j)
                    residual += double{a.at(y, j)} * x[j];
                error += a.at(y, k) * residual;
                magnitude += std::fabs(a.at(y, k)) * Residual(a, x, b, y).magnitude;
            }
            errors += error * error;
            magnitudes += magnitude * magnitude;
        }
        EXPECT_LE(std::sqrt(errors), 0x1p-20 * std::sqrt(magnitudes)) << width << " x " << height;
    }
}

TEST(LinearAlgebra, EquationsWithoutASolutionAreRefused)
{
    const std::vector<float> singular = {1, 2, 3, 2, 4, 6, 3, 6, 9}, zero(9), good = {4, 1, 0, 1, 4, 1, 0, 1, 4};
    const std::vector<float> negative = {4, 1, 0, 1, -4, 1, 0, 1, 4}, b = {1, 2, 3};
    std::vector<float> x(3, 7);
    for (Solver* solve : {rvkSolveLUf32, rvkSolveCholeskyf32, rvkSolveLDLf32, leastSquares}) {
        for (const std::vector<float>& a : {singular, zero})
            EXPECT_EQ(solve(a.data(), 3, 0, b.data(), x.data()), RAVIK_EFAIL);
        for (const float bad : {NAN, INFINITY, -INFINITY}) {
            std::vector<float> a = good, c = b;
            a[3] = bad;
            c[1] = bad;
            EXPECT_EQ(solve(a.data(), 3, 0, b.data(), x.data()), RAVIK_EFAIL);
            EXPECT_EQ(solve(good.data(), 3, 0, c.data(), x.data()), RAVIK_EFAIL);
        }
        const float tiny = 1e-30f, large = 1e30f;
        EXPECT_EQ(solve(&tiny, 1, 0, &large, x.data()), RAVIK_EFAIL) << "the solution is no float";
        for (const uint32_t stride : {8u, 13u, 0x2aaaaaacu})
            EXPECT_EQ(solve(good.data(), 3, stride, b.data(), x.data()), RAVIK_EBADPARAM) << stride;
    }
    EXPECT_EQ(rvkSolveCholeskyf32(negative.data(), 3, 0, b.data(), x.data()), RAVIK_EFAIL);
    EXPECT_EQ(rvkSolvef32(good.data(), 3, 2, 0, b.data(), x.data()), RAVIK_EBADPARAM) << "fewer equations";
    EXPECT_EQ(x, std::vector<float>(3, 7)) << "nothing is written";
}

} // namespace
