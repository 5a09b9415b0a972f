/* Ravik: products of vectors and matrices, decompositions and linear equations.
 *
 * Common to all functions of this header:
 *   Shapes     matrices are stored by rows: `width` columns and `height` rows, each at least 1. Strides are in bytes; 0
 *              means packed rows. Matrices of 2^31 bytes are refused.
 *   Alignment  pointers are aligned to their element type; strides are multiples of its size.
 *   In place   outputs must not overlap anything else, but where a function says so.
 *   Errors     RAVIK_EBADPARAM on bad arguments, without log; RAVIK_EFAIL where the functions say so; RAVIK_ENORES when
 *              there is no scratch memory. Nothing is written then. */
#ifndef RAVIK_LINEARALGEBRA_H
#define RAVIK_LINEARALGEBRA_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- products ----
 *
 * Each product of floats is rounded, then the sum is, in the order of the indices: the results are the same on every
 * machine. (32-bit Arm takes subnormal numbers as zero where vectors compute.) */

/* The cross product of two vectors of three elements. `dst` may be one of them. Logs "Assertion failed @<function>:
 * <condition>" on bad arguments. */
RVK_API void rvkCrossProduct3x1f32(const float32_t* a, const float32_t* b, float32_t* dst);

/* dst = src1 * src2, of `height1` rows of `width2` elements; `src2` has `width1` rows. Sums start from 0. */
RVK_API rvkStatus rvkMatrixMultiplyf32(const float32_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                       const float32_t* src2, uint32_t width2, uint32_t stride2, float32_t* dst,
                                       uint32_t dstStride);

/* The same of bytes; sums are modulo 2^32. */
RVK_API rvkStatus rvkMatrixMultiplys8s32(const int8_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                         const int8_t* src2, uint32_t width2, uint32_t stride2, int32_t* dst,
                                         uint32_t dstStride);

/* ---- singular values ---- */

/* The thin decomposition A = U * diag(w) * Vt, with k the smaller of `width` and `height`: `w` has k values, descending
 * and not negative, `U` `height` rows of k elements, `Vt` k rows of `width`. The columns of U and the rows of Vt are
 * orthonormal, those of singular values 0, too; in each row of Vt the first element of largest magnitude is positive.
 * `U` and `Vt` may be null.
 *
 * By Jacobi rotations from one side (Hestenes, "Inversion of Matrices by Biorthogonalization and Related Results",
 * 1958) in double precision: U * diag(w) * Vt - A is within k * 2^-20 of A's norm, and U^T * U and Vt * Vt^T within k *
 * 2^-20 of the identity. RAVIK_EFAIL when an element of A, or of what would be stored, is not finite. */
RVK_API rvkStatus rvkSVDf32(const float32_t* A, uint32_t width, uint32_t height, uint32_t aStride, float32_t* w,
                            float32_t* U, uint32_t uStride, float32_t* Vt, uint32_t vtStride);

/* ---- equations ----
 *
 * x with A * x = b, in double precision, stored as floats. `x` may be `b`.
 *
 * RAVIK_EFAIL when A is singular, that is when a pivot is at most n * 2^-48 of the largest magnitude among the elements
 * that are read, n being the width; or when an element of A, b or x is not finite. */

/* The least squares solution: of the vectors x of `width` elements one with the smallest |A * x - b|, where b has
 * `height`, not below `width`. By Householder's reflections with pivoting of columns (Businger, Golub, "Linear Least
 * Squares Solutions by Householder Transformations", 1965). */
RVK_API rvkStatus rvkSolvef32(const float32_t* A, uint32_t width, uint32_t height, uint32_t aStride, const float32_t* b,
                              float32_t* x);

/* Of n x n elements, by Gauss's elimination with partial pivoting. */
RVK_API rvkStatus rvkSolveLUf32(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x);

/* Of a symmetric positive definite matrix, of which the lower triangle alone is read, by Cholesky's decomposition in
 * the form without roots. RAVIK_EFAIL, too, when a pivot is negative, which is when the matrix is not positive
 * definite. */
RVK_API rvkStatus rvkSolveCholeskyf32(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b,
                                      float32_t* x);

/* Of any regular symmetric matrix, of which the lower triangle alone is read: the decomposition with pivots of one and
 * of two rows (Bunch, Kaufman, "Some Stable Methods for Calculating Inertia and Solving Symmetric Linear Systems",
 * 1977). Of a pivot of two rows the determinant is held against the square of the bound. */
RVK_API rvkStatus rvkSolveLDLf32(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x);

RVK_EXTERN_C_END

#endif
