// Products of vectors and matrices, decompositions and linear equations: the public functions.
#include "bodies.h"

using namespace rvk;

// ---- products -------------------------------------------------------------------------------------------------------

void rvkCrossProduct3x1f32(const float32_t* a, const float32_t* b, float32_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkCrossProduct3x1f32);
    RVK_CHECK_ARGS(a && b && dst);
    implementation<Slot::rvkCrossProduct3x1f32>(target)(a, b, dst);
}

rvkStatus rvkMatrixMultiplyf32(const float32_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                               const float32_t* src2, uint32_t width2, uint32_t stride2, float32_t* dst,
                               uint32_t dstStride)
{
    stride1 = packedIfZero(stride1, width1, sizeof *src1);
    stride2 = packedIfZero(stride2, width2, sizeof *src2);
    dstStride = packedIfZero(dstStride, width2, sizeof *dst);
    const RVK_IMPL target = chooseTarget(Slot::rvkMatrixMultiplyf32);
    RVK_CHECK_STATUS(src1 && src2 && dst && isMatrix(width1, height1, stride1, sizeof *src1) &&
                     isMatrix(width2, width1, stride2, sizeof *src2) &&
                     isMatrix(width2, height1, dstStride, sizeof *dst));
    return implementation<Slot::rvkMatrixMultiplyf32>(target)(src1, width1, height1, stride1, src2, width2, stride2,
                                                              dst, dstStride);
}

rvkStatus rvkMatrixMultiplys8s32(const int8_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                 const int8_t* src2, uint32_t width2, uint32_t stride2, int32_t* dst,
                                 uint32_t dstStride)
{
    stride1 = packedIfZero(stride1, width1);
    stride2 = packedIfZero(stride2, width2);
    dstStride = packedIfZero(dstStride, width2, sizeof *dst);
    const RVK_IMPL target = chooseTarget(Slot::rvkMatrixMultiplys8s32);
    RVK_CHECK_STATUS(src1 && src2 && dst && isMatrix(width1, height1, stride1, sizeof *src1) &&
                     isMatrix(width2, width1, stride2, sizeof *src2) &&
                     isMatrix(width2, height1, dstStride, sizeof *dst));
    return implementation<Slot::rvkMatrixMultiplys8s32>(target)(src1, width1, height1, stride1, src2, width2, stride2,
                                                                dst, dstStride);
}

// ---- singular values ------------------------------------------------------------------------------------------------

rvkStatus rvkSVDf32(const float32_t* A, uint32_t width, uint32_t height, uint32_t aStride, float32_t* w, float32_t* U,
                    uint32_t uStride, float32_t* Vt, uint32_t vtStride)
{
    const uint32_t k = std::min(width, height);
    aStride = packedIfZero(aStride, width, sizeof *A);
    uStride = packedIfZero(uStride, k, sizeof *U);
    vtStride = packedIfZero(vtStride, width, sizeof *Vt);
    const RVK_IMPL target = chooseTarget(Slot::rvkSVDf32);
    RVK_CHECK_STATUS(A && w && isMatrix(width, height, aStride, sizeof *A) && isMatrix(k, height, uStride, sizeof *U) &&
                     isMatrix(width, k, vtStride, sizeof *Vt));
    return implementation<Slot::rvkSVDf32>(target)(A, width, height, aStride, w, U, uStride, Vt, vtStride);
}

// ---- equations ------------------------------------------------------------------------------------------------------

rvkStatus rvkSolvef32(const float32_t* A, uint32_t width, uint32_t height, uint32_t aStride, const float32_t* b,
                      float32_t* x)
{
    aStride = packedIfZero(aStride, width, sizeof *A);
    const RVK_IMPL target = chooseTarget(Slot::rvkSolvef32);
    RVK_CHECK_STATUS(A && b && x && height >= width && isMatrix(width, height, aStride, sizeof *A));
    return implementation<Slot::rvkSolvef32>(target)(A, width, height, aStride, b, x);
}

rvkStatus rvkSolveLUf32(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    aStride = packedIfZero(aStride, n, sizeof *A);
    const RVK_IMPL target = chooseTarget(Slot::rvkSolveLUf32);
    RVK_CHECK_STATUS(A && b && x && isMatrix(n, n, aStride, sizeof *A));
    return implementation<Slot::rvkSolveLUf32>(target)(A, n, aStride, b, x);
}

rvkStatus rvkSolveCholeskyf32(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    aStride = packedIfZero(aStride, n, sizeof *A);
    const RVK_IMPL target = chooseTarget(Slot::rvkSolveCholeskyf32);
    RVK_CHECK_STATUS(A && b && x && isMatrix(n, n, aStride, sizeof *A));
    return implementation<Slot::rvkSolveCholeskyf32>(target)(A, n, aStride, b, x);
}

rvkStatus rvkSolveLDLf32(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    aStride = packedIfZero(aStride, n, sizeof *A);
    const RVK_IMPL target = chooseTarget(Slot::rvkSolveLDLf32);
    RVK_CHECK_STATUS(A && b && x && isMatrix(n, n, aStride, sizeof *A));
    return implementation<Slot::rvkSolveLDLf32>(target)(A, n, aStride, b, x);
}
