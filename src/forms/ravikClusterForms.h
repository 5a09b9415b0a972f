// Iterations of clustering, by the kClusterSteps of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkClusterEuclideanu8)(const uint8_t* points, uint32_t pointCount, uint32_t dim,
                                          uint32_t pointStride, const uint8_t* centers, uint32_t centerCount,
                                          uint32_t centerStride, uint32_t* labels, uint8_t* newCenters,
                                          uint32_t newCenterStride, uint32_t* clusterSizes, uint64_t* clusterDistances)
{
    return iterateClusters({ClusterMetric::euclidean, points, pointCount, dim, pointStride, centers, centerCount,
                            centerStride, labels, newCenters, newCenterStride, clusterSizes, clusterDistances},
                           kClusterSteps<uint8_t>);
}

rvkStatus RVK_FORM(rvkClusterEuclideanf32)(const float32_t* points, uint32_t pointCount, uint32_t dim,
                                           uint32_t pointStride, const float32_t* centers, uint32_t centerCount,
                                           uint32_t centerStride, uint32_t* labels, float32_t* newCenters,
                                           uint32_t newCenterStride, uint32_t* clusterSizes,
                                           float32_t* clusterDistances)
{
    constexpr uint32_t size = sizeof(float32_t);
    return iterateClusters({ClusterMetric::euclidean, points, pointCount, dim, pointStride / size, centers, centerCount,
                            centerStride / size, labels, newCenters, newCenterStride / size, clusterSizes,
                            clusterDistances},
                           kClusterSteps<float32_t>);
}

rvkStatus RVK_FORM(rvkClusterEuclideanNormedf32)(const float32_t* points, uint32_t pointCount, uint32_t dim,
                                                 uint32_t pointStride, const float32_t* centers, uint32_t centerCount,
                                                 uint32_t centerStride, uint32_t* labels, float32_t* newCenters,
                                                 uint32_t newCenterStride, uint32_t* clusterSizes,
                                                 float32_t* clusterDistances)
{
    constexpr uint32_t size = sizeof(float32_t);
    return iterateClusters({ClusterMetric::normed, points, pointCount, dim, pointStride / size, centers, centerCount,
                            centerStride / size, labels, newCenters, newCenterStride / size, clusterSizes,
                            clusterDistances},
                           kClusterSteps<float32_t>);
}

rvkStatus RVK_FORM(rvkClusterEuclideanNormed36f32)(const float32_t* points, uint32_t pointCount, uint32_t pointStride,
                                                   const float32_t* centers, uint32_t centerCount,
                                                   uint32_t centerStride, uint32_t* labels, float32_t* newCenters,
                                                   uint32_t newCenterStride, uint32_t* clusterSizes,
                                                   float32_t* clusterDistances)
{
    return RVK_FORM(rvkClusterEuclideanNormedf32)(points, pointCount, 36, pointStride, centers, centerCount,
                                                  centerStride, labels, newCenters, newCenterStride, clusterSizes,
                                                  clusterDistances);
}

} // namespace RVK_ROOM
