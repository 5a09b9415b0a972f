// SOLVE and SVD: linear equations and singular values. Matrices are small and packed.
#include "groups.h"

#include <ravik/linearalgebra.h>

#include <algorithm>

using namespace arguments;

namespace {

constexpr uint32_t kDefinite = 6; // rows of the positive definite matrix

uint32_t packed(uint32_t width)
{
    return static_cast<uint32_t>(width * sizeof(float));
}

using Solve = decltype(rvkSolveLUf32);

rvkStatus solve(Solve* function, const float* A, uint32_t n, const float* b, float* x)
{
    return function(A, n, packed(n), b, x);
}

rvkStatus solveDefinite(Solve* function, const float* A, const float* b, float* x)
{
    return function(A, kDefinite, packed(kDefinite), b, x);
}

rvkStatus solveLeastSquares(decltype(rvkSolvef32)* function, const float* A, uint32_t width, uint32_t height,
                            const float* b, float* x)
{
    return function(A, width, height, packed(width), b, x);
}

rvkStatus decompose(decltype(rvkSVDf32)* function, const float* A, uint32_t width, uint32_t height, float* w, float* U,
                    float* Vt)
{
    return function(A, width, height, packed(width), w, U, packed(std::min(width, height)), Vt, packed(width));
}

Argument elements(uint32_t count)
{
    return src.ofSize(count).within({{-1, 1}});
}

// Of a matrix whose diagonal outweighs the rest.
Argument definiteElements()
{
    std::vector<Range> ranges;
    for (uint32_t i = 0; i < kDefinite * kDefinite; i++)
        ranges.push_back(i % (kDefinite + 1) ? Range{-1, 1} : Range{kDefinite, kDefinite + 2});
    return numbers(ranges);
}

} // namespace

const FunctionGroup& solveFunctions()
{
    const Argument n = oneOf({6, 1, 2, 3, 12}).refusing({0}).limited();
    const Argument columns = oneOf({4, 1, 2, 6}).refusing({0, 13}).limited();
    const Argument rows = oneOf({8, 6, 12}).refusing({0}).limited();

    static const FunctionGroup group{
        "raviksolve",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkSolve", rvkSolvef32, solveLeastSquares, elements(72), columns, rows, elements(12),
                             dst.ofSize(6))
                .repeated(100),
            RVK_TEST_ADAPTED("rvkSolveLUf32", rvkSolveLUf32, solve, elements(144), n, elements(12), dst.ofSize(12))
                .repeated(100),
            RVK_TEST_ADAPTED("rvkSolveCholeskyf32", rvkSolveCholeskyf32, solveDefinite, definiteElements(),
                             elements(kDefinite), dst.ofSize(kDefinite))
                .repeated(100),
            RVK_TEST_ADAPTED("rvkSolveLDLf32", rvkSolveLDLf32, solve, elements(144), n, elements(12), dst.ofSize(12))
                .repeated(100),
        }};
    return group;
}

const FunctionGroup& svdFunctions()
{
    const Argument size = oneOf({6, 1, 3, 8}).refusing({0}).limited();

    static const FunctionGroup group{
        "raviksvd",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkSVDf32", rvkSVDf32, decompose, elements(64), size, size, dst.ofSize(8),
                             dst.ofSize(64).orNull(), dst.ofSize(64).orNull())
                .repeated(10),
        }};
    return group;
}
