// C references of searches for descriptors.
#include "cpu/ravikSearchC.h"

#include "cpu/descriptorDistance.h"
#include "functions.h"

#include <algorithm>

namespace rvk {
namespace {

int32_t dotInBlock(const int8_t* block, size_t k, const int8_t* query)
{
    int32_t dot = 0;
    for (size_t j = 0; j < kDescriptor; ++j)
        dot += block[placeInBlock(k, j)] * query[j];
    return dot;
}

void measureBlock(const DescriptorQuery& query, const int8_t* block, const float32_t* invLengths, float32_t* distances)
{
    for (size_t k = 0; k < kBlockDescriptors; ++k)
        distances[k] = descriptorDistance(query.invLength, invLengths[k],
                                          static_cast<float32_t>(dotInBlock(block, k, query.vector)));
}

void measureBoxes(const KDQuery& query, const KDNode& node, int32_t* bounds)
{
    for (size_t k = 0; k < kChildren; ++k) {
        bounds[k] = 0;
        for (size_t j = 0; j < kDescriptor; ++j) {
            const size_t i = placeInBlock(k, j);
            const int32_t outside = std::max({node.low[i] - query.high[i], query.low[i] - node.high[i], 0});
            bounds[k] += outside * outside;
        }
    }
}

void measureCenters(const int8_t* descriptor, const int8_t* centers, uint32_t* distances)
{
    for (size_t i = 0; i < kBranches; ++i) {
        distances[i] = 0;
        for (size_t j = 0; j < kDescriptor; ++j) {
            const int32_t difference = descriptor[j] - centers[i * kDescriptor + j];
            distances[i] += static_cast<uint32_t>(difference * difference);
        }
    }
}

} // namespace

// ---- blocks of descriptors ------------------------------------------------------------------------------------------

void arrangeBlock(const int8_t* vectors, size_t count, int8_t* block)
{
    for (size_t k = 0; k < kBlockDescriptors; ++k)
        for (size_t j = 0; j < kDescriptor; ++j)
            block[placeInBlock(k, j)] = k < count ? vectors[k * kDescriptor + j] : int8_t{0};
}

DescriptorQuery::DescriptorQuery(const int8_t* v, float32_t invLen) : vector(v), invLength(invLen)
{
    repeatInBlock(v, block);
}

// ---- the list of the nearest ----------------------------------------------------------------------------------------

bool NearestList::isBefore(size_t a, size_t b) const
{
    return m_distances[a] < m_distances[b] || (m_distances[a] == m_distances[b] && m_indices[a] < m_indices[b]);
}

void NearestList::swap(size_t a, size_t b)
{
    std::swap(m_distances[a], m_distances[b]);
    std::swap(m_indices[a], m_indices[b]);
}

void NearestList::siftUp(size_t i)
{
    for (; i > 0 && isBefore((i - 1) / 2, i); i = (i - 1) / 2)
        swap(i, (i - 1) / 2);
}

void NearestList::siftDown(size_t i, size_t end)
{
    for (size_t child; (child = 2 * i + 1) < end; i = child) {
        if (child + 1 < end && isBefore(child, child + 1))
            ++child;
        if (!isBefore(i, child))
            return;
        swap(i, child);
    }
}

void NearestList::add(float32_t distance, uint32_t index)
{
    if (m_count < m_capacity) {
        m_distances[m_count] = distance;
        m_indices[m_count] = index;
        siftUp(m_count++);
    } else {
        if (m_count == 0 || (distance == m_distances[0] && index > m_indices[0]))
            return;
        m_distances[0] = distance;
        m_indices[0] = index;
        siftDown(0, m_count);
    }
    if (m_count == m_capacity)
        m_limit = m_distances[0];
}

uint32_t NearestList::sort()
{
    for (size_t end = m_count; end > 1;) {
        swap(0, --end);
        siftDown(0, end);
    }
    return m_count;
}

// ---- vocabulary tree ------------------------------------------------------------------------------------------------

rvkStatus searchVocabulary(MeasureCenters* measure, const int8_t* centers, const uint32_t* children, uint32_t nodeCount,
                           const int8_t* descriptors, uint32_t descriptorCount, uint32_t* leaves, uint32_t* distances)
{
    for (size_t d = 0; d < descriptorCount; ++d) {
        for (uint32_t node = 0;;) {
            const uint32_t* const child = children + kBranches * node;
            uint32_t all[kBranches];
            measure(descriptors + kDescriptor * d, centers + kBranches * kDescriptor * node, all);
            size_t nearest = kBranches;
            for (size_t i = 0; i < kBranches; ++i)
                if (child[i] && (nearest == kBranches || all[i] < all[nearest]))
                    nearest = i;
            if (nearest == kBranches)
                return RAVIK_EFAIL;
            const uint32_t next = child[nearest];
            if (next & kLeafBit) {
                leaves[d] = next & ~kLeafBit;
                if (distances)
                    distances[d] = all[nearest];
                break;
            }
            if (next <= node || next >= nodeCount)
                return RAVIK_EFAIL;
            node = next;
        }
    }
    return RAVIK_SUCCESS;
}

// ---- the functions --------------------------------------------------------------------------------------------------

rvkStatus rvkLinearSearchPrepare8x36s8C(const int8_t* vectors, uint32_t vectorCount, int8_t* prepared)
{
    for (size_t i = 0; i < vectorCount; i += kBlockDescriptors)
        arrangeBlock(vectors + i * kDescriptor, vectorCount - i, prepared + i * kDescriptor);
    return RAVIK_SUCCESS;
}

rvkStatus rvkLinearSearch8x36s8C(const int8_t* prepared, const float32_t* invLengths, uint32_t vectorCount,
                                 const int8_t* query, float32_t invLenQuery, float32_t maxDistance, uint32_t capacity,
                                 uint32_t* count, uint32_t* indices, float32_t* distances)
{
    NearestList list(maxDistance, capacity, indices, distances);
    for (uint32_t i = 0; i < vectorCount; ++i) {
        const int8_t* const block = prepared + i / kBlockDescriptors * kBlockBytes;
        const int32_t dot = dotInBlock(block, i % kBlockDescriptors, query);
        list.offer(descriptorDistance(invLenQuery, invLengths[i], static_cast<float32_t>(dot)), i);
    }
    *count = list.sort();
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikSearchForms.h"
