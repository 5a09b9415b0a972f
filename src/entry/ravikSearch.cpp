// Clusters, searches and classification: the public functions. Those that create and destroy trees are not dispatched.
#include "cpu/ravikSearchC.h"
#include "dispatch.h"

#include <cmath>

using namespace rvk;

// ---- clusters -------------------------------------------------------------------------------------------------------

namespace {

template <class T>
bool areVectors(const T* data, uint32_t count, uint32_t dim, uint32_t stride)
{
    return data && count && dim && rowFits(dim, sizeof(T)) && stride >= rowSize(dim, sizeof(T));
}

// `dim` is an argument of the implementation, too, but where it is a number of its own.
template <Slot slot, class T, class Distances, class... Dim>
rvkStatus cluster(uint32_t dim, const T* points, uint32_t pointCount, Dim... given, uint32_t pointStride,
                  const T* centers, uint32_t centerCount, uint32_t centerStride, uint32_t* labels, T* newCenters,
                  uint32_t newCenterStride, uint32_t* clusterSizes, Distances* clusterDistances)
{
    pointStride = packedIfZero(pointStride, dim, sizeof(T));
    centerStride = packedIfZero(centerStride, dim, sizeof(T));
    newCenterStride = packedIfZero(newCenterStride, dim, sizeof(T));
    const RVK_IMPL target = chooseTarget(slot);
    RVK_CHECK_STATUS(areVectors(points, pointCount, dim, pointStride) &&
                     areVectors(centers, centerCount, dim, centerStride) && labels &&
                     rowFits(pointCount, sizeof *labels) &&
                     (!newCenters || areVectors(newCenters, centerCount, dim, newCenterStride)));
    return implementation<slot>(target)(points, pointCount, given..., pointStride, centers, centerCount, centerStride,
                                        labels, newCenters, newCenterStride, clusterSizes, clusterDistances);
}

} // namespace

rvkStatus rvkClusterEuclideanu8(const uint8_t* points, uint32_t pointCount, uint32_t dim, uint32_t pointStride,
                                const uint8_t* centers, uint32_t centerCount, uint32_t centerStride, uint32_t* labels,
                                uint8_t* newCenters, uint32_t newCenterStride, uint32_t* clusterSizes,
                                uint64_t* clusterDistances)
{
    return cluster<Slot::rvkClusterEuclideanu8, uint8_t, uint64_t, uint32_t>(
        dim, points, pointCount, dim, pointStride, centers, centerCount, centerStride, labels, newCenters,
        newCenterStride, clusterSizes, clusterDistances);
}

rvkStatus rvkClusterEuclideanf32(const float32_t* points, uint32_t pointCount, uint32_t dim, uint32_t pointStride,
                                 const float32_t* centers, uint32_t centerCount, uint32_t centerStride,
                                 uint32_t* labels, float32_t* newCenters, uint32_t newCenterStride,
                                 uint32_t* clusterSizes, float32_t* clusterDistances)
{
    return cluster<Slot::rvkClusterEuclideanf32, float32_t, float32_t, uint32_t>(
        dim, points, pointCount, dim, pointStride, centers, centerCount, centerStride, labels, newCenters,
        newCenterStride, clusterSizes, clusterDistances);
}

rvkStatus rvkClusterEuclideanNormedf32(const float32_t* points, uint32_t pointCount, uint32_t dim, uint32_t pointStride,
                                       const float32_t* centers, uint32_t centerCount, uint32_t centerStride,
                                       uint32_t* labels, float32_t* newCenters, uint32_t newCenterStride,
                                       uint32_t* clusterSizes, float32_t* clusterDistances)
{
    return cluster<Slot::rvkClusterEuclideanNormedf32, float32_t, float32_t, uint32_t>(
        dim, points, pointCount, dim, pointStride, centers, centerCount, centerStride, labels, newCenters,
        newCenterStride, clusterSizes, clusterDistances);
}

rvkStatus rvkClusterEuclideanNormed36f32(const float32_t* points, uint32_t pointCount, uint32_t pointStride,
                                         const float32_t* centers, uint32_t centerCount, uint32_t centerStride,
                                         uint32_t* labels, float32_t* newCenters, uint32_t newCenterStride,
                                         uint32_t* clusterSizes, float32_t* clusterDistances)
{
    return cluster<Slot::rvkClusterEuclideanNormed36f32, float32_t, float32_t>(
        36, points, pointCount, pointStride, centers, centerCount, centerStride, labels, newCenters, newCenterStride,
        clusterSizes, clusterDistances);
}

// ---- the nearest descriptors ----------------------------------------------------------------------------------------

rvkStatus rvkKDTreeCreate36s8f32(const int8_t* vectors, const float32_t* invLengths, uint32_t vectorCount,
                                 rvkKDTree36s8f32** tree)
{
    RVK_CHECK_STATUS(vectors && invLengths && vectorCount && tree);
    return createTree(vectors, invLengths, vectorCount, tree);
}

void rvkKDTreeDestroy36s8f32(rvkKDTree36s8f32* tree)
{
    destroyTree(tree);
}

rvkStatus rvkKDTreeQuery36s8f32(const rvkKDTree36s8f32* tree, const int8_t* query, float32_t invLenQuery,
                                float32_t maxDistance, uint32_t maxChecks, uint32_t capacity, uint32_t* count,
                                uint32_t* indices, float32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkKDTreeQuery36s8f32);
    RVK_CHECK_STATUS(tree && query && errorOfInverse(query, invLenQuery) <= kMostErrorOfInverse &&
                     !std::isnan(maxDistance) && count && indices && distances);
    return implementation<Slot::rvkKDTreeQuery36s8f32>(target)(tree, query, invLenQuery, maxDistance, maxChecks,
                                                               capacity, count, indices, distances);
}

rvkStatus rvkLinearSearchPrepare8x36s8(const int8_t* vectors, uint32_t vectorCount, int8_t* prepared)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkLinearSearchPrepare8x36s8);
    RVK_CHECK_STATUS(vectors && prepared);
    return implementation<Slot::rvkLinearSearchPrepare8x36s8>(target)(vectors, vectorCount, prepared);
}

rvkStatus rvkLinearSearch8x36s8(const int8_t* prepared, const float32_t* invLengths, uint32_t vectorCount,
                                const int8_t* query, float32_t invLenQuery, float32_t maxDistance, uint32_t capacity,
                                uint32_t* count, uint32_t* indices, float32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkLinearSearch8x36s8);
    RVK_CHECK_STATUS(prepared && invLengths && query && !std::isnan(maxDistance) && count && indices && distances);
    return implementation<Slot::rvkLinearSearch8x36s8>(target)(prepared, invLengths, vectorCount, query, invLenQuery,
                                                               maxDistance, capacity, count, indices, distances);
}

// ---- vocabulary tree ------------------------------------------------------------------------------------------------

rvkStatus rvkKMeansTreeSearch36x10s8(const int8_t* centers, const uint32_t* children, uint32_t nodeCount,
                                     const int8_t* descriptors, uint32_t descriptorCount, uint32_t* leaves,
                                     uint32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkKMeansTreeSearch36x10s8);
    RVK_CHECK_STATUS(centers && children && nodeCount && descriptors && descriptorCount && leaves);
    return implementation<Slot::rvkKMeansTreeSearch36x10s8>(target)(centers, children, nodeCount, descriptors,
                                                                    descriptorCount, leaves, distances);
}

// ---- support vector machine -----------------------------------------------------------------------------------------

rvkStatus rvkSVMPredict2Classf32(uint32_t kernel, uint32_t degree, float32_t gamma, float32_t coef0, float32_t bias,
                                 const float32_t* supportVectors, const float32_t* coefs, uint32_t supportCount,
                                 uint32_t dim, uint32_t supportStride, const float32_t* samples, uint32_t sampleCount,
                                 uint32_t sampleStride, float32_t* decisions, int32_t* labels)
{
    constexpr uint32_t mostDegree = 16;
    supportStride = packedIfZero(supportStride, dim, sizeof(float32_t));
    sampleStride = packedIfZero(sampleStride, dim, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkSVMPredict2Classf32);
    RVK_CHECK_STATUS(kernel <= RAVIK_SVM_SIGMOID && (kernel != RAVIK_SVM_POLY || degree <= mostDegree) &&
                     (kernel != RAVIK_SVM_RBF || gamma >= 0) &&
                     areVectors(supportVectors, supportCount, dim, supportStride) && coefs &&
                     areVectors(samples, sampleCount, dim, sampleStride) && decisions &&
                     rowFits(sampleCount, sizeof *decisions));
    return implementation<Slot::rvkSVMPredict2Classf32>(target)(kernel, degree, gamma, coef0, bias, supportVectors,
                                                                coefs, supportCount, dim, supportStride, samples,
                                                                sampleCount, sampleStride, decisions, labels);
}
