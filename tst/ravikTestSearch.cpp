// KMEANS, KDTREE, LINEARSEARCH, KMEANSTREESEARCH and SVM: clusters of vectors, searches among descriptors,
// classification.
#include "groups.h"

#include <ravik/search.h>

#include <algorithm>
#include <cmath>
#include <string>

using namespace arguments;

namespace {

// ---- adapters -------------------------------------------------------------------------------------------------------

template <class T>
using Distances = std::conditional_t<std::is_integral_v<T>, uint64_t, float>;

// Lists of a number for each point come last, so that strides are those of vectors.
template <class T>
rvkStatus cluster(rvkStatus (*function)(const T*, uint32_t, uint32_t, uint32_t, const T*, uint32_t, uint32_t, uint32_t*,
                                        T*, uint32_t, uint32_t*, Distances<T>*),
                  const T* points, uint32_t dim, uint32_t pointCount, uint32_t pointStride, const T* centers,
                  uint32_t centerCount, uint32_t centerStride, T* newCenters, uint32_t newCenterStride,
                  uint32_t* labels, uint32_t* clusterSizes, Distances<T>* clusterDistances)
{
    return function(points, pointCount, dim, pointStride, centers, centerCount, centerStride, labels, newCenters,
                    newCenterStride, clusterSizes, clusterDistances);
}

rvkStatus cluster36(decltype(rvkClusterEuclideanNormed36f32)* function, const float* points, uint32_t pointCount,
                    uint32_t pointStride, const float* centers, uint32_t centerCount, uint32_t centerStride,
                    float* newCenters, uint32_t newCenterStride, uint32_t* labels, uint32_t* clusterSizes,
                    float* clusterDistances)
{
    return function(points, pointCount, pointStride, centers, centerCount, centerStride, labels, newCenters,
                    newCenterStride, clusterSizes, clusterDistances);
}

constexpr uint32_t kTreeVectors = 200, kNodes = 12, kDescriptors = 30;

float inverseLength(const int8_t* vector)
{
    int32_t squares = 0;
    for (size_t j = 0; vector && j < 36; j++)
        squares += vector[j] * vector[j];
    return squares ? 1 / std::sqrt(static_cast<float>(squares)) : 0;
}

// Makes the tree that is searched.
rvkStatus searchTree(decltype(rvkKDTreeQuery36s8f32)* function, const int8_t* vectors, const int8_t* query,
                     float maxDistance, uint32_t maxChecks, uint32_t capacity, uint32_t* count, uint32_t* indices,
                     float* distances)
{
    rvkKDTree36s8f32* tree = nullptr;
    float invLengths[kTreeVectors];
    for (size_t i = 0; i < kTreeVectors; i++)
        invLengths[i] = inverseLength(vectors ? vectors + 36 * i : nullptr);
    const rvkStatus made = vectors ? rvkKDTreeCreate36s8f32(vectors, invLengths, kTreeVectors, &tree) : RAVIK_SUCCESS;
    if (made != RAVIK_SUCCESS)
        return made;
    const rvkStatus status =
        function(tree, query, inverseLength(query), maxDistance, maxChecks, capacity, count, indices, distances);
    rvkKDTreeDestroy36s8f32(tree);
    return status;
}

// Children by bytes: of each node the first is a leaf, others are nothing, nodes and leaves.
uint32_t childOf(uint32_t node, uint32_t branch, uint32_t byte)
{
    constexpr uint32_t leaf = 1u << 31;
    const uint32_t after = kNodes - 1 - node;
    if (branch == 0 || byte % 3 == 2 || (byte % 3 == 1 && after == 0))
        return leaf | byte;
    return byte % 3 == 0 ? 0 : node + 1 + byte % after;
}

rvkStatus searchVocabulary(decltype(rvkKMeansTreeSearch36x10s8)* function, const int8_t* centers, const uint8_t* bytes,
                           const int8_t* descriptors, uint32_t descriptorCount, uint32_t* leaves, uint32_t* distances)
{
    uint32_t children[10 * kNodes];
    for (uint32_t i = 0; bytes && i < 10 * kNodes; i++)
        children[i] = childOf(i / 10, i % 10, bytes[i]);
    return function(centers, bytes ? children : nullptr, kNodes, descriptors, descriptorCount, leaves, distances);
}

// ---- arguments ------------------------------------------------------------------------------------------------------

// So many vectors of the dimension that is the picture's width, or a number.
Argument vectors(const Argument& image, uint32_t count, uint32_t dim = 0)
{
    return image.measuring({[=](const CaseSizes& sizes) {
                                return ImageSize{dim ? dim : sizes.picture.columns, count};
                            },
                            "of " + std::to_string(count) + " vectors"});
}

} // namespace

const FunctionGroup& clusterFunctions()
{
    constexpr uint32_t most = 37;
    const Argument centerCount = oneOf({most, 1, 4, 9}).refusing({0}).limited();
    const Argument centers = vectors(src, most), newCenters = vectors(dst, most).orNull();
    const Argument labels = dst.perPoint(), numbers = dst.ofSize(most).orNull();

    static const FunctionGroup group{
        "ravikkmeans",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkClusterEuclideanNormed36f32", rvkClusterEuclideanNormed36f32, cluster36,
                             src.ofPoints(36), height, stride, vectors(src, most, 36), centerCount, stride,
                             vectors(dst, most, 36).orNull(), stride, labels, numbers, numbers),
            RVK_TEST_ADAPTED("rvkClusterEuclideanf32", rvkClusterEuclideanf32, cluster<float>, src, width, height,
                             stride, centers, centerCount, stride, newCenters, stride, labels, numbers, numbers),
            RVK_TEST_ADAPTED("rvkClusterEuclideanNormedf32", rvkClusterEuclideanNormedf32, cluster<float>, src, width,
                             height, stride, centers, centerCount, stride, newCenters, stride, labels, numbers,
                             numbers),
            RVK_TEST_ADAPTED("rvkClusterEuclideanu8", rvkClusterEuclideanu8, cluster<uint8_t>, src, width, height,
                             stride, centers, centerCount, stride, newCenters, stride, labels, numbers, numbers),
        }};
    return group;
}

const FunctionGroup& kdTreeFunctions()
{
    static const FunctionGroup group{
        "ravikkdtree",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkKDTree36s8f32Search", rvkKDTreeQuery36s8f32, searchTree, src.ofSize(36 * kTreeVectors),
                             src.ofSize(36), oneOf({1.5, 4, 0.5, 100, -1}), oneOf({0, 1, 30, 1000}),
                             capacity(0, kTreeVectors), value, list(kTreeVectors), list(kTreeVectors)),
        }};
    return group;
}

const FunctionGroup& linearSearchFunctions()
{
    constexpr uint32_t most = 75, blocks = (most + 7) / 8;
    const Argument count = oneOf({most, 0, 1, 8, 20}).limited();

    static const FunctionGroup group{
        "raviklinearsearch",
        "rvk",
        false,
        {
            RVK_TEST(rvkLinearSearch8x36s8, src.ofSize(288 * blocks), src.ofSize(most), count, src.ofSize(36),
                     between(-1, 1), oneOf({2, 1e4, 1e9, -1}), capacity(0, most), value, list(most), list(most)),
            RVK_TEST(rvkLinearSearchPrepare8x36s8, src.ofSize(36 * most), capacity(1, most), dst.ofSize(288 * blocks)),
        }};
    return group;
}

const FunctionGroup& vocabularyTreeFunctions()
{
    const Argument count = oneOf({kDescriptors, 1, 2}).refusing({0}).limited();

    static const FunctionGroup group{
        "ravikkmeanstreesearch",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkKMeansTreeSearch", rvkKMeansTreeSearch36x10s8, searchVocabulary,
                             src.ofSize(360 * kNodes), src.ofSize(10 * kNodes), src.ofSize(36 * kDescriptors), count,
                             dst.ofSize(kDescriptors), dst.ofSize(kDescriptors).orNull()),
        }};
    return group;
}

const FunctionGroup& svmFunctions()
{
    // Sums of whole numbers are the same in any order.
    constexpr uint32_t most = 70;
    const Argument whole = src.within({{-3, 3}}).whole();
    const Argument kernel =
        oneOf({RAVIK_SVM_RBF, RAVIK_SVM_LINEAR, RAVIK_SVM_POLY, RAVIK_SVM_SIGMOID}).refusing({4, UINT32_MAX});
    const Argument degree = between(0, 16), gamma = oneOf({1.0 / 64, 1.0 / 1024, 0}), coef0 = oneOf({0.25, -0.5, 0});

    static const FunctionGroup group{
        "raviksvm",
        "rvk",
        false,
        {
            RVK_TEST(rvkSVMPredict2Classf32, kernel, degree, gamma, coef0, oneOf({-0.375, 12}), vectors(whole, most),
                     whole.ofSize(most), oneOf({most, 1, 5}).refusing({0}).limited(), width, stride, whole, height,
                     stride, dst.perPoint(), dst.perPoint().orNull())
                .within(1e-4f),
        }};
    return group;
}
