// C references of clustering.
#include "cpu/ravikClusterC.h"

#include "functions.h"
#include "scratch.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace rvk {
namespace {

template <class T>
using Sum = typename ClusterNumbers<T>::Sum;

template <class T>
uint32_t firstNearest(const ClusterJob<T>& job, const T* point)
{
    using Limits = std::numeric_limits<Sum<T>>;
    uint32_t label = 0;
    Sum<T> least = Limits::has_infinity ? Limits::infinity() : Limits::max();
    for (uint32_t k = 0; k < job.centerCount; ++k) {
        const Sum<T> distance = squaredDistance(job, point, job.center(k));
        if (distance < least) {
            least = distance;
            label = k;
        }
    }
    return label;
}

template <class T>
rvkStatus labelPoints(const ClusterJob<T>& job)
{
    for (size_t i = 0; i < job.pointCount; ++i)
        job.labels[i] = nearestCenter(job, job.point(i));
    return RAVIK_SUCCESS;
}

template <class T>
constexpr ClusterSteps<T> kClusterSteps = {labelPoints<T>, squaredDistance};

// ---- new centres ----------------------------------------------------------------------------------------------------

// The sum of `count` points, which is not 0, becomes a centre; it stays as it is when its new place is nowhere.
void moveCenter(ClusterMetric, const uint64_t* sums, uint64_t count, size_t dim, uint8_t* center)
{
    for (size_t j = 0; j < dim; ++j)
        center[j] = static_cast<uint8_t>((2 * sums[j] + count) / (2 * count));
}

void moveCenter(ClusterMetric metric, const double* sums, uint64_t count, size_t dim, float32_t* center)
{
    double divisor = static_cast<double>(count);
    if (metric == ClusterMetric::normed) {
        double squares = 0;
        for (size_t j = 0; j < dim; ++j)
            squares += sums[j] * sums[j];
        divisor = std::sqrt(squares);
        if (!(divisor > 0 && std::isfinite(divisor)))
            return;
    }
    for (size_t j = 0; j < dim; ++j)
        center[j] = static_cast<float32_t>(sums[j] / divisor);
}

uint64_t notNegative(uint64_t distance)
{
    return distance;
}
double notNegative(double distance)
{
    return distance < 0 ? 0 : distance;
}

// Sums over the points of each cluster.
template <class T>
class Clusters
{
public:
    Clusters(const ClusterJob<T>& job, const ClusterSteps<T>& steps)
        : m_job(job), m_steps(steps), m_coordinates(job.newCenters ? job.centerCount : 1, job.newCenters ? job.dim : 1),
          m_distances(job.centerCount), m_sizes(job.centerCount)
    {
    }
    bool hasMemory() const { return m_coordinates && m_distances && m_sizes; }

    void sumUp()
    {
        const size_t dim = m_job.dim, count = m_job.centerCount;
        std::fill_n(m_coordinates.get(), m_job.newCenters ? count * dim : 0, Sum<T>{0});
        std::fill_n(m_distances.get(), count, Sum<T>{0});
        std::fill_n(m_sizes.get(), count, 0u);
        for (size_t i = 0; i < m_job.pointCount; ++i) {
            const size_t label = m_job.labels[i];
            const T* const point = m_job.point(i);
            m_sizes[label] += 1;
            if (m_job.clusterDistances)
                m_distances[label] += notNegative(m_steps.squaredDistance(m_job, point, m_job.center(label)));
            if (m_job.newCenters)
                addTo(m_coordinates.get() + label * dim, point);
        }
    }
    void write() const
    {
        const size_t dim = m_job.dim;
        for (size_t k = 0; k < m_job.centerCount; ++k) {
            if (m_job.clusterSizes)
                m_job.clusterSizes[k] = m_sizes[k];
            if (m_job.clusterDistances)
                m_job.clusterDistances[k] = static_cast<typename ClusterNumbers<T>::Distances>(m_distances[k]);
            if (!m_job.newCenters)
                continue;
            T* const center = m_job.newCenters + k * m_job.newCenterStride;
            memmove(center, m_job.center(k), dim * sizeof(T)); // which may be the same
            if (m_sizes[k])
                moveCenter(m_job.metric, m_coordinates.get() + k * dim, m_sizes[k], dim, center);
        }
    }

private:
    void addTo(Sum<T>* sums, const T* point) const
    {
        for (size_t j = 0; j < m_job.dim; ++j)
            sums[j] += static_cast<Sum<T>>(point[j]);
    }

    const ClusterJob<T>& m_job;
    const ClusterSteps<T>& m_steps;
    const Scratch<Sum<T>> m_coordinates, m_distances;
    const Scratch<uint32_t> m_sizes;
};

template <class T>
rvkStatus iterate(const ClusterJob<T>& job, const ClusterSteps<T>& steps)
{
    Clusters<T> clusters(job, steps);
    if (!clusters.hasMemory())
        return RAVIK_ENORES;
    if (const rvkStatus status = steps.label(job); status != RAVIK_SUCCESS)
        return status;
    clusters.sumUp();
    clusters.write();
    return RAVIK_SUCCESS;
}

} // namespace

uint64_t squaredDistance(const ClusterJob<uint8_t>& job, const uint8_t* point, const uint8_t* center)
{
    uint64_t sum = 0;
    for (size_t j = 0; j < job.dim; ++j) {
        const int32_t difference = point[j] - center[j];
        sum += static_cast<uint32_t>(difference * difference);
    }
    return sum;
}

double squaredDistance(const ClusterJob<float32_t>& job, const float32_t* point, const float32_t* center)
{
    double sum = 0;
    if (job.metric == ClusterMetric::normed) {
        for (size_t j = 0; j < job.dim; ++j)
            sum += static_cast<double>(point[j]) * center[j];
        return 2 - 2 * sum;
    }
    for (size_t j = 0; j < job.dim; ++j) {
        const double difference = static_cast<double>(point[j]) - center[j];
        sum += difference * difference;
    }
    return sum;
}

uint32_t nearestCenter(const ClusterJob<uint8_t>& job, const uint8_t* point)
{
    return firstNearest(job, point);
}

uint32_t nearestCenter(const ClusterJob<float32_t>& job, const float32_t* point)
{
    return firstNearest(job, point);
}

rvkStatus iterateClusters(const ClusterJob<uint8_t>& job, const ClusterSteps<uint8_t>& steps)
{
    return iterate(job, steps);
}

rvkStatus iterateClusters(const ClusterJob<float32_t>& job, const ClusterSteps<float32_t>& steps)
{
    return iterate(job, steps);
}

} // namespace rvk

#include "forms/ravikClusterForms.h"
