// What the references and the vector implementations of searches for descriptors share: how descriptors are arranged,
// the list of what is found, and the walks through trees.
#pragma once

#include <ravik/search.h>

#include <cstddef>

namespace rvk {

// Vector implementations may not leave shared definitions behind.
#define RVK_ALWAYS_INLINE inline __attribute__((always_inline))

constexpr size_t kDescriptor = 36; // bytes

// Eight descriptors: pairs of elements, one of each descriptor side by side.
constexpr size_t kBlockDescriptors = 8, kBlockPairs = kDescriptor / 2, kBlockBytes = kDescriptor * kBlockDescriptors;

// Where a block has element j of descriptor k.
constexpr size_t placeInBlock(size_t k, size_t j)
{
    return j / 2 * (2 * kBlockDescriptors) + 2 * k + j % 2;
}

// The elements of one descriptor for all of a block.
template <class T>
RVK_ALWAYS_INLINE void repeatInBlock(const T* elements, T* block)
{
    for (size_t j = 0; j < kDescriptor; j += 2)
        for (size_t k = 0; k < kBlockDescriptors; ++k)
            __builtin_memcpy(block + placeInBlock(k, j), elements + j, 2 * sizeof(T));
}

constexpr size_t blocksOf(size_t descriptors)
{
    return (descriptors + kBlockDescriptors - 1) / kBlockDescriptors;
}

// The block of eight descriptors from `vectors` on, or of those that there are and zeros.
void arrangeBlock(const int8_t* vectors, size_t count, int8_t* block);

// What is searched for, and as a block of eight of it.
struct DescriptorQuery
{
    const int8_t* vector;
    float32_t invLength;
    int8_t block[kBlockBytes];

    DescriptorQuery(const int8_t* v, float32_t invLen);
};

// The nearest descriptors of those that are offered, in the lists of the caller: a heap with the farthest at its top
// until they are sorted at last.
class NearestList
{
public:
    NearestList(float32_t maxDistance, uint32_t capacity, uint32_t* indices, float32_t* distances)
        : m_limit(maxDistance), m_capacity(capacity), m_indices(indices), m_distances(distances)
    {
    }

    // What is farther than this finds no place.
    RVK_ALWAYS_INLINE float32_t limit() const { return m_limit; }
    RVK_ALWAYS_INLINE void offer(float32_t distance, uint32_t index)
    {
        if (distance <= m_limit)
            add(distance, index);
    }
    uint32_t sort();

private:
    bool isBefore(size_t a, size_t b) const;
    void swap(size_t a, size_t b);
    void siftUp(size_t i);
    void siftDown(size_t i, size_t end);
    void add(float32_t distance, uint32_t index);

    float32_t m_limit;
    uint32_t m_capacity, m_count = 0;
    uint32_t* m_indices;
    float32_t* m_distances;
};

// ---- k-d tree -------------------------------------------------------------------------------------------------------
//
// A node is three levels of splits in two. Every child has the box of its descriptors, scaled to length 1, in steps of
// 1 / kBoxScale.

constexpr size_t kChildren = kBlockDescriptors; // at most
constexpr int32_t kBoxScale = 1 << 13;          // its squared distances in a unit sphere fit 32 bits

// The same coordinate range of eight boxes, arranged as the elements of descriptors.
using BoxCorners = int16_t[kDescriptor * kChildren];

struct KDNode
{
    uint32_t children;
    uint32_t first[kChildren]; // the child node, or the first block of a leaf
    uint32_t size[kChildren];  // descriptors in a leaf; 0 of a node
    BoxCorners low, high;
};

// The query in the same steps, rounded down and up, eight times.
struct KDQuery
{
    DescriptorQuery descriptor;
    BoxCorners low, high;
};

// What either room brings: the distances of a block's descriptors, and the squared distances, in steps, of the query
// from a node's boxes.
struct KDSearch
{
    void (*measureBlock)(const DescriptorQuery& query, const int8_t* block, const float32_t* invLengths,
                         float32_t* distances);
    void (*measureBoxes)(const KDQuery& query, const KDNode& node, int32_t* bounds);
};

rvkStatus searchTree(const KDSearch& search, const rvkKDTree36s8f32& tree, const int8_t* query, float32_t invLenQuery,
                     float32_t maxDistance, uint32_t maxChecks, uint32_t capacity, uint32_t* count, uint32_t* indices,
                     float32_t* distances);

// The relative error of an inverse length, not a number or infinite where it is quite wrong; of zeros 0 or infinite.
double errorOfInverse(const int8_t* vector, float32_t invLength);
constexpr double kMostErrorOfInverse = 1e-4;

rvkStatus createTree(const int8_t* vectors, const float32_t* invLengths, uint32_t count, rvkKDTree36s8f32** tree);
void destroyTree(rvkKDTree36s8f32* tree);

// ---- vocabulary tree ------------------------------------------------------------------------------------------------

constexpr size_t kBranches = 10;
constexpr uint32_t kLeafBit = 1u << 31;

// The squared distances of a descriptor from a node's centres.
using MeasureCenters = void(const int8_t* descriptor, const int8_t* centers, uint32_t* distances);

rvkStatus searchVocabulary(MeasureCenters* measure, const int8_t* centers, const uint32_t* children, uint32_t nodeCount,
                           const int8_t* descriptors, uint32_t descriptorCount, uint32_t* leaves, uint32_t* distances);

#undef RVK_ALWAYS_INLINE

} // namespace rvk
