/* Ravik: clusters of vectors, searches for the nearest of them, classification.
 *
 * Common to all functions of this header:
 *   Shapes     one vector of `dim` numbers a row, as many as counts say. Strides are in bytes, from one vector to the
 *              next; 0 means packed ones; those of floats are rounded down to whole floats.
 *   Alignment  bytes may stand anywhere; floats, words and pointers are aligned to their size.
 *   Overlap    outputs must overlap neither inputs nor each other, but for the new centres of clusters.
 *   Errors     RAVIK_EBADPARAM for a null pointer that is not said to be allowed, a count or dimension of 0 that is
 *              not, a stride shorter than a row, a row of 2^32 bytes or more, numbers out of range; RAVIK_ENORES when
 *              memory cannot be had. In either case nothing is written. */
#ifndef RAVIK_SEARCH_H
#define RAVIK_SEARCH_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- clusters: one iteration of k-means -------------------------------------------------------------------------
 *
 * An iteration of S. Lloyd, "Least squares quantization in PCM" (1982): each point gets in `labels` the label of its
 * nearest centre, the lowest on a tie, then each centre moves to the mean of its points. Per centre, and each may be
 * null:
 *
 *     newCenters        the mean of the points with its label; the old coordinates where there is none
 *     clusterSizes      their number
 *     clusterDistances  the sum of their squared distances to the old centre
 *
 * newCenters may be centers, with the same stride. Repeat until the sum of clusterDistances hardly shrinks.
 *
 * Of bytes all is exact, means are rounded to the nearest, halves up. Of floats distances and sums are formed in double
 * precision, element by element in their order, and rounded once; results have the same bits in every mode. The search
 * begins with label 0 and an infinite distance and takes what is less: a centre that is not a number never wins, and a
 * point that is not gets label 0. */
RVK_API rvkStatus rvkClusterEuclideanu8(const uint8_t* points, uint32_t pointCount, uint32_t dim, uint32_t pointStride,
                                        const uint8_t* centers, uint32_t centerCount, uint32_t centerStride,
                                        uint32_t* labels, uint8_t* newCenters, uint32_t newCenterStride,
                                        uint32_t* clusterSizes, uint64_t* clusterDistances);
RVK_API rvkStatus rvkClusterEuclideanf32(const float32_t* points, uint32_t pointCount, uint32_t dim,
                                         uint32_t pointStride, const float32_t* centers, uint32_t centerCount,
                                         uint32_t centerStride, uint32_t* labels, float32_t* newCenters,
                                         uint32_t newCenterStride, uint32_t* clusterSizes, float32_t* clusterDistances);

/* On the unit sphere: I. Dhillon and D. Modha, "Concept decompositions for large sparse text data using clustering"
 * (2001). Points and centres have length 1, as rvkVecNormalize36s8f32 makes them, and are used as they are given. The
 * squared distance is 2 - 2 p.c, in clusterDistances not below 0. The new centre is the sum of the points scaled to
 * length 1, and the old one when that length is 0 or not finite. */
RVK_API rvkStatus rvkClusterEuclideanNormedf32(const float32_t* points, uint32_t pointCount, uint32_t dim,
                                               uint32_t pointStride, const float32_t* centers, uint32_t centerCount,
                                               uint32_t centerStride, uint32_t* labels, float32_t* newCenters,
                                               uint32_t newCenterStride, uint32_t* clusterSizes,
                                               float32_t* clusterDistances);
/* The same, of 36 elements. */
RVK_API rvkStatus rvkClusterEuclideanNormed36f32(const float32_t* points, uint32_t pointCount, uint32_t pointStride,
                                                 const float32_t* centers, uint32_t centerCount, uint32_t centerStride,
                                                 uint32_t* labels, float32_t* newCenters, uint32_t newCenterStride,
                                                 uint32_t* clusterSizes, float32_t* clusterDistances);

/* ---- the nearest of many descriptors -----------------------------------------------------------------------------
 *
 * Descriptors are 36 packed bytes, as rvkDescriptor17x17u8To36s8 makes them; invLengths[i] is one over the length of
 * descriptor i. Distances D are those of rvkSumOfSquaredDiffs36x4s8, bit for bit. Found are the descriptors with
 * D <= maxDistance, which may be infinite but must be a number, in ascending order of D and of the index where D is
 * equal: the first `capacity` of them, or all if they are fewer; `count` receives how many. A D that is not a number is
 * never found. indices and distances need room for `capacity`; a capacity of 0 finds none. */

/* A k-d tree: J. Friedman, J. Bentley and R. Finkel, "An algorithm for finding best matches in logarithmic expected
 * time" (1977). It splits at medians of the dimension of largest variance, so that equal descriptors do no harm. */
typedef struct rvkKDTree36s8f32 rvkKDTree36s8f32;

/* The tree of `vectorCount` descriptors, of which it keeps a copy. Each inverse length must be right to 1e-4 of what it
 * should be, and 0 for a descriptor of zeros. Release with rvkKDTreeDestroy36s8f32, which ignores null. */
RVK_API rvkStatus rvkKDTreeCreate36s8f32(const int8_t* vectors, const float32_t* invLengths, uint32_t vectorCount,
                                         rvkKDTree36s8f32** tree);
RVK_API void rvkKDTreeDestroy36s8f32(rvkKDTree36s8f32* tree);

/* Searches a tree for `query`. invLenQuery must be as right as the tree's. maxChecks of 0 finds exactly what
 * rvkLinearSearch8x36s8 finds. Others visit the leaves in the order of their least possible distances (J. Beis and D.
 * Lowe, "Shape indexing using approximate nearest-neighbour search in high-dimensional spaces", 1997), compute at most
 * so many distances, and find the nearest of those. Any number of threads may search a tree at once. */
RVK_API rvkStatus rvkKDTreeQuery36s8f32(const rvkKDTree36s8f32* tree, const int8_t* query, float32_t invLenQuery,
                                        float32_t maxDistance, uint32_t maxChecks, uint32_t capacity, uint32_t* count,
                                        uint32_t* indices, float32_t* distances);

/* Descriptors in the order that rvkLinearSearch8x36s8 wants: `prepared` gets 288 bytes for each eight of them or part
 * of eight, the same in every mode. vectorCount may be 0. */
RVK_API rvkStatus rvkLinearSearchPrepare8x36s8(const int8_t* vectors, uint32_t vectorCount, int8_t* prepared);

/* Searches all prepared descriptors. Inverse lengths are used as they are given. vectorCount may be 0. */
RVK_API rvkStatus rvkLinearSearch8x36s8(const int8_t* prepared, const float32_t* invLengths, uint32_t vectorCount,
                                        const int8_t* query, float32_t invLenQuery, float32_t maxDistance,
                                        uint32_t capacity, uint32_t* count, uint32_t* indices, float32_t* distances);

/* ---- vocabulary tree ---------------------------------------------------------------------------------------------
 *
 * D. Nister and H. Stewenius, "Scalable recognition with a vocabulary tree" (2006). Node n has ten centres of 36 bytes,
 * from centers + 360 n on, and a word for each, from children + 10 n on: 0 for no child, a number with bit 31 set for a
 * leaf with the other bits as its label, any other for the child node, whose number is above n.
 *
 * From node 0 on each descriptor of 36 packed bytes goes to the centre with a child whose squared Euclidean distance is
 * least, the first on a tie, until that is a leaf: leaves[d] is its label, distances[d] that last distance; distances
 * may be null. A child that is not above its node or not below nodeCount, or a node without children, ends the call
 * with RAVIK_EFAIL when a descriptor comes there: results of earlier descriptors stand, later ones are not written. */
RVK_API rvkStatus rvkKMeansTreeSearch36x10s8(const int8_t* centers, const uint32_t* children, uint32_t nodeCount,
                                             const int8_t* descriptors, uint32_t descriptorCount, uint32_t* leaves,
                                             uint32_t* distances);

/* ---- support vector machine --------------------------------------------------------------------------------------
 *
 * C. Cortes and V. Vapnik, "Support-vector networks" (1995), with two classes:
 *
 *     decisions[s] = bias + sum of coefs[i] * K(v_i, x_s) over all supportVectors v_i, of samples x_s
 *     labels[s]    = 1 where that is above 0, else -1; labels may be null
 *
 *     RAVIK_SVM_LINEAR   K = v.x
 *     RAVIK_SVM_POLY     K = (gamma * v.x + coef0)^degree, degree 0..16
 *     RAVIK_SVM_RBF      K = exp(-gamma * |v - x|^2), gamma >= 0
 *     RAVIK_SVM_SIGMOID  K = tanh(gamma * v.x + coef0)
 *
 * Parameters that the kernel has not may be anything. Decisions are within 1e-5 of the exact ones, relative to
 * |bias| + sum of |coefs[i]| m_i, where m is, with q the sum of |v_j x_j|: q;
 * max(1, degree) (|gamma| q + |coef0|)^degree; 1; 1 + |gamma| q + |coef0|. Their bits differ between modes and
 * processors. */
#define RAVIK_SVM_LINEAR 0u
#define RAVIK_SVM_POLY 1u
#define RAVIK_SVM_RBF 2u
#define RAVIK_SVM_SIGMOID 3u
RVK_API rvkStatus rvkSVMPredict2Classf32(uint32_t kernel, uint32_t degree, float32_t gamma, float32_t coef0,
                                         float32_t bias, const float32_t* supportVectors, const float32_t* coefs,
                                         uint32_t supportCount, uint32_t dim, uint32_t supportStride,
                                         const float32_t* samples, uint32_t sampleCount, uint32_t sampleStride,
                                         float32_t* decisions, int32_t* labels);

RVK_EXTERN_C_END

#endif
