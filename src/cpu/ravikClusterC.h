// What the reference and the vector implementation of clustering share: all but the search for the nearest centres.
#pragma once

#include <ravik/types.h>

#include <cstddef>

namespace rvk {

// Vector implementations may not leave shared definitions behind.
#define RVK_ALWAYS_INLINE inline __attribute__((always_inline))

enum class ClusterMetric { euclidean, normed };

template <class T>
struct ClusterNumbers;
template <>
struct ClusterNumbers<uint8_t>
{
    using Sum = uint64_t; // in which coordinates and distances are summed
    using Distances = uint64_t;
};
template <>
struct ClusterNumbers<float32_t>
{
    using Sum = double;
    using Distances = float32_t;
};

// One iteration. Strides are in elements.
template <class T>
struct ClusterJob
{
    ClusterMetric metric;
    const T* points;
    uint32_t pointCount, dim;
    size_t pointStride;
    const T* centers;
    uint32_t centerCount;
    size_t centerStride;
    uint32_t* labels;
    T* newCenters;
    size_t newCenterStride;
    uint32_t* clusterSizes;
    typename ClusterNumbers<T>::Distances* clusterDistances;

    RVK_ALWAYS_INLINE const T* point(size_t i) const { return points + i * pointStride; }
    RVK_ALWAYS_INLINE const T* center(size_t k) const { return centers + k * centerStride; }
};

// Of a point and a centre, by the job's metric.
uint64_t squaredDistance(const ClusterJob<uint8_t>& job, const uint8_t* point, const uint8_t* center);
double squaredDistance(const ClusterJob<float32_t>& job, const float32_t* point, const float32_t* center);

// The label of the centre that is nearest to the point.
uint32_t nearestCenter(const ClusterJob<uint8_t>& job, const uint8_t* point);
uint32_t nearestCenter(const ClusterJob<float32_t>& job, const float32_t* point);

// What either room brings: `label` writes the labels of all points, or nothing when it has no memory; squaredDistance
// is equal to the above.
template <class T>
struct ClusterSteps
{
    rvkStatus (*label)(const ClusterJob<T>& job);
    typename ClusterNumbers<T>::Sum (*squaredDistance)(const ClusterJob<T>& job, const T* point, const T* center);
};

// Labels the points, and does what follows from their labels.
rvkStatus iterateClusters(const ClusterJob<uint8_t>& job, const ClusterSteps<uint8_t>& steps);
rvkStatus iterateClusters(const ClusterJob<float32_t>& job, const ClusterSteps<float32_t>& steps);

#undef RVK_ALWAYS_INLINE

} // namespace rvk
