// Products of matrices, decompositions and linear equations. Small matrices come in batches of 1000, one after the
// other, and so do the right sides and results.
#include "bench.h"

#include <ravik/linearalgebra.h>

#include <vector>

namespace {

using namespace bench;

constexpr Picture kBatch = {1000, 1}, kOne = {1, 1};

// Elements between -1 and 1; with weight on the diagonal for matrices that are to be positive definite.
template <u32 n>
const f32* matrices()
{
    static const std::vector<f32> all = [] {
        std::vector<f32> elements(kBatch.width * n * n);
        u32 state = 1;
        for (f32& element : elements) {
            state = state * 1664525 + 1013904223;
            element = static_cast<f32>(static_cast<s32>(state)) * 0x1p-31f;
        }
        for (u32 i = 0; i < elements.size(); ++i)
            if (i % (n * n) % (n + 1) == 0)
                elements[i] += static_cast<f32>(n);
        return elements;
    }();
    return all.data();
}

template <u32 n, auto function>
void solve(const Picture& p)
{
    for (u32 i = 0; i < p.width; ++i)
        function(matrices<n>() + i * n * n, n, 0, matrices<n>(), p.out<f32>() + i * n);
}

rvkStatus solveLeastSquares(const f32* A, u32 n, u32 stride, const f32* b, f32* x)
{
    return rvkSolvef32(A, n, n, stride, b, x);
}

template <u32 n>
void decompose(const Picture& p)
{
    for (u32 i = 0; i < p.width; ++i)
        rvkSVDf32(matrices<n>() + i * n * n, n, n, 0, p.out<f32>(0), p.out<f32>(1), 0, p.out<f32>(2), 0);
}

template <u32 n>
void multiply(const Picture& p)
{
    for (u32 i = 0; i < p.width; ++i)
        rvkMatrixMultiplyf32(p.in<f32>(0), n, n, 0, p.in<f32>(1), n, 0, p.out<f32>(), 0);
}

template <u32 n>
void multiplyBytes(const Picture& p)
{
    for (u32 i = 0; i < p.width; ++i)
        rvkMatrixMultiplys8s32(p.in<s8>(0), n, n, 0, p.in<s8>(1), n, 0, p.out<s32>(), 0);
}

void cross(const Picture& p)
{
    for (u32 i = 0; i < p.width; ++i)
        rvkCrossProduct3x1f32(p.in<f32>(0) + 3 * i, p.in<f32>(1) + 3 * i, p.out<f32>() + 3 * i);
}

#if RVK_BENCH_OPENCV
template <u32 n>
cv::Mat square(const f32* elements)
{
    return cv::Mat(n, n, CV_32F, const_cast<f32*>(elements));
}

template <u32 n, int method>
void solveOpencv(const Picture& p)
{
    const cv::Mat b(n, 1, CV_32F, const_cast<f32*>(matrices<n>()));
    for (u32 i = 0; i < p.width; ++i) {
        cv::Mat x(n, 1, CV_32F, p.out<f32>() + i * n);
        cv::solve(square<n>(matrices<n>() + i * n * n), b, x, method);
    }
}

template <u32 n>
void decomposeOpencv(const Picture& p)
{
    cv::Mat w(n, 1, CV_32F, p.out<f32>(0)), U = square<n>(p.out<f32>(1)), Vt = square<n>(p.out<f32>(2));
    for (u32 i = 0; i < p.width; ++i)
        cv::SVD::compute(square<n>(matrices<n>() + i * n * n), w, U, Vt);
}

template <u32 n>
void multiplyOpencv(const Picture& p)
{
    cv::Mat dst = square<n>(p.out<f32>());
    for (u32 i = 0; i < p.width; ++i)
        cv::gemm(square<n>(p.in<f32>(0)), square<n>(p.in<f32>(1)), 1, cv::noArray(), 0, dst);
}

// There is no product of bytes: they become floats, which are exact for as few.
template <u32 n>
void multiplyBytesOpencv(const Picture& p)
{
    const auto bytes = [&](unsigned index) { return cv::Mat(n, n, CV_8S, const_cast<s8*>(p.in<s8>(index))); };
    cv::Mat a, b, product, dst(n, n, CV_32S, p.out<s32>());
    for (u32 i = 0; i < p.width; ++i) {
        bytes(0).convertTo(a, CV_32F);
        bytes(1).convertTo(b, CV_32F);
        cv::gemm(a, b, 1, cv::noArray(), 0, product);
        product.convertTo(dst, CV_32S);
    }
}

void crossOpencv(const Picture& p)
{
    const auto vectors = [&](unsigned index, u32 i) {
        return cv::Mat(3, 1, CV_32F, const_cast<f32*>(p.in<f32>(index)) + 3 * i);
    };
    for (u32 i = 0; i < p.width; ++i) {
        const cv::Mat product = vectors(0, i).cross(vectors(1, i));
        p.out<f32>()[3 * i] = product.at<f32>(0);
    }
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

constexpr Row kRows[] = {
    {"rvkCrossProduct3x1f32", nullptr, traffic(24, 12), cross, OPENCV_WORK(crossOpencv), nullptr, kBatch},
    {"rvkMatrixMultiplyf32 8x8", nullptr, traffic(512, 256), multiply<8>, OPENCV_WORK(multiplyOpencv<8>), nullptr,
     kBatch},
    {"rvkMatrixMultiplyf32 64x64", nullptr, traffic(1 << 15, 1 << 14), multiply<64>, OPENCV_WORK(multiplyOpencv<64>),
     nullptr, kOne},
    {"rvkMatrixMultiplyf32 512x512", nullptr, traffic(1 << 21, 1 << 20), multiply<512>,
     OPENCV_WORK(multiplyOpencv<512>), nullptr, kOne},
    {"rvkMatrixMultiplys8s32 64x64", nullptr, traffic(1 << 13, 1 << 14), multiplyBytes<64>,
     OPENCV_WORK(multiplyBytesOpencv<64>), nullptr, kOne},
    {"rvkMatrixMultiplys8s32 512x512", nullptr, traffic(1 << 19, 1 << 20), multiplyBytes<512>,
     OPENCV_WORK(multiplyBytesOpencv<512>), nullptr, kOne},
    {"rvkSVDf32 3x3", nullptr, traffic(36, 84), decompose<3>, OPENCV_WORK(decomposeOpencv<3>), nullptr, kBatch},
    {"rvkSVDf32 12x12", nullptr, traffic(576, 1200), decompose<12>, OPENCV_WORK(decomposeOpencv<12>), nullptr, kBatch},
    {"rvkSolvef32 3x3", nullptr, traffic(48, 12), solve<3, solveLeastSquares>,
     OPENCV_WORK(solveOpencv<3, cv::DECOMP_QR>), nullptr, kBatch},
    {"rvkSolvef32 12x12", nullptr, traffic(624, 48), solve<12, solveLeastSquares>,
     OPENCV_WORK(solveOpencv<12, cv::DECOMP_QR>), nullptr, kBatch},
    {"rvkSolveLUf32 3x3", nullptr, traffic(48, 12), solve<3, rvkSolveLUf32>, OPENCV_WORK(solveOpencv<3, cv::DECOMP_LU>),
     nullptr, kBatch},
    {"rvkSolveLUf32 12x12", nullptr, traffic(624, 48), solve<12, rvkSolveLUf32>,
     OPENCV_WORK(solveOpencv<12, cv::DECOMP_LU>), nullptr, kBatch},
    {"rvkSolveCholeskyf32 3x3", nullptr, traffic(48, 12), solve<3, rvkSolveCholeskyf32>,
     OPENCV_WORK(solveOpencv<3, cv::DECOMP_CHOLESKY>), nullptr, kBatch},
    {"rvkSolveCholeskyf32 12x12", nullptr, traffic(624, 48), solve<12, rvkSolveCholeskyf32>,
     OPENCV_WORK(solveOpencv<12, cv::DECOMP_CHOLESKY>), nullptr, kBatch},
    {"rvkSolveLDLf32 3x3", nullptr, traffic(48, 12), solve<3, rvkSolveLDLf32>,
     OPENCV_WORK(solveOpencv<3, cv::DECOMP_LU>), nullptr, kBatch},
    {"rvkSolveLDLf32 12x12", nullptr, traffic(624, 48), solve<12, rvkSolveLDLf32>,
     OPENCV_WORK(solveOpencv<12, cv::DECOMP_LU>), nullptr, kBatch},
};
const Rows registered(kRows);

} // namespace
