// The k-d tree of descriptors: how it is built, and the walk through it, which either room has in common.
#include "cpu/ravikSearchC.h"
#include "scratch.h"

#include <ravik/frame.h>

#include <algorithm>
#include <cmath>
#include <new>

// One piece of memory: this, then the arrays in the order of their alignment.
struct rvkKDTree36s8f32
{
    rvk::KDNode* nodes; // the first is the root
    int8_t* blocks;     // descriptors leaf by leaf, whole blocks
    float32_t* invLengths;
    uint32_t* indices; // of the caller's descriptors
    uint32_t nodeCount, count;
    double errorOfInverses; // the largest
};

namespace rvk {
namespace {

constexpr uint32_t kLeaf = 16; // descriptors at most, whole blocks

double lengthOf(const int8_t* vector)
{
    int32_t squares = 0;
    for (size_t j = 0; j < kDescriptor; ++j)
        squares += vector[j] * vector[j];
    return std::sqrt(static_cast<double>(squares));
}

// An element of a descriptor scaled to length 1, in steps, rounded down. The length is not 0 but of zeros.
int16_t stepsBelow(int8_t element, double length)
{
    return element ? static_cast<int16_t>(std::floor(element * kBoxScale / length)) : int16_t{0};
}

// ---- building -------------------------------------------------------------------------------------------------------

struct SubTree
{
    uint32_t begin, end; // in the order of descriptors
    uint32_t size() const { return end - begin; }
};

class Builder
{
public:
    Builder(uint32_t count, int16_t* coordinates, uint32_t* order) : m_coordinates(coordinates), m_order(order)
    {
        for (uint32_t i = 0; i < count; ++i)
            order[i] = i;
        m_count = count;
    }

    // How many nodes the tree has. That follows from the number of descriptors alone.
    static uint32_t countNodes(uint32_t descriptors)
    {
        SubTree parts[kChildren];
        uint32_t nodes = 1;
        const size_t children = divide({0, descriptors}, parts, [](const SubTree&, uint32_t) {});
        for (size_t k = 0; k < children; ++k)
            nodes += isLeaf(parts[k]) ? 0 : countNodes(parts[k].size());
        return nodes;
    }
    // Puts the descriptors in order.
    void build(KDNode* nodes)
    {
        m_nodes = nodes;
        m_nodeCount = 0;
        addNode({0, m_count});
    }

private:
    static bool isLeaf(const SubTree& tree) { return tree.size() <= kLeaf; }

    // The largest part is split again and again, in whole blocks as equal as may be.
    template <class Split>
    static size_t divide(const SubTree& tree, SubTree* parts, Split split)
    {
        parts[0] = tree;
        size_t count = 1;
        for (; count < kChildren; ++count) {
            SubTree* const largest = std::max_element(
                parts, parts + count, [](const SubTree& a, const SubTree& b) { return a.size() < b.size(); });
            if (isLeaf(*largest))
                break;
            const auto half = static_cast<uint32_t>(blocksOf(largest->size()) / 2 * kBlockDescriptors);
            split(*largest, largest->begin + half);
            parts[count] = {largest->begin + half, largest->end};
            largest->end = largest->begin + half;
        }
        return count;
    }

    uint32_t addNode(const SubTree& tree)
    {
        const uint32_t number = m_nodeCount++;
        KDNode& node = m_nodes[number];
        SubTree parts[kChildren];
        node = {};
        node.children = static_cast<uint32_t>(
            divide(tree, parts, [this](const SubTree& part, uint32_t middle) { splitAt(part, middle); }));
        for (size_t k = 0; k < node.children; ++k) {
            setBox(node, k, parts[k]);
            node.size[k] = isLeaf(parts[k]) ? parts[k].size() : 0;
            node.first[k] =
                isLeaf(parts[k]) ? static_cast<uint32_t>(parts[k].begin / kBlockDescriptors) : addNode(parts[k]);
        }
        return number;
    }
    int16_t coordinate(uint32_t i, size_t j) const { return m_coordinates[size_t{i} * kDescriptor + j]; }

    void splitAt(const SubTree& tree, uint32_t middle)
    {
        const size_t j = widestDimension(tree);
        std::nth_element(m_order + tree.begin, m_order + middle, m_order + tree.end, [&](uint32_t a, uint32_t b) {
            const int16_t ofA = coordinate(a, j), ofB = coordinate(b, j);
            return ofA < ofB || (ofA == ofB && a < b);
        });
    }
    size_t widestDimension(const SubTree& tree) const
    {
        int64_t sums[kDescriptor] = {}, squares[kDescriptor] = {};
        for (uint32_t i = tree.begin; i < tree.end; ++i)
            for (size_t j = 0; j < kDescriptor; ++j) {
                const int32_t steps = coordinate(m_order[i], j);
                sums[j] += steps;
                squares[j] += steps * steps;
            }
        size_t widest = 0;
        double largest = -1;
        for (size_t j = 0; j < kDescriptor; ++j) {
            const auto sum = static_cast<double>(sums[j]);
            const double variance = static_cast<double>(squares[j]) - sum * sum / tree.size();
            if (variance > largest) {
                largest = variance;
                widest = j;
            }
        }
        return widest;
    }
    void setBox(KDNode& node, size_t k, const SubTree& tree) const
    {
        for (size_t j = 0; j < kDescriptor; ++j) {
            int16_t low = coordinate(m_order[tree.begin], j), high = low;
            for (uint32_t i = tree.begin + 1; i < tree.end; ++i) {
                low = std::min(low, coordinate(m_order[i], j));
                high = std::max(high, coordinate(m_order[i], j));
            }
            node.low[placeInBlock(k, j)] = low;
            node.high[placeInBlock(k, j)] = static_cast<int16_t>(high + 1);
        }
    }

    const int16_t* m_coordinates;
    uint32_t* m_order;
    KDNode* m_nodes = nullptr;
    uint32_t m_count, m_nodeCount = 0;
};

// ---- searching ------------------------------------------------------------------------------------------------------

// The query among the boxes.
KDQuery placeQuery(const int8_t* query, float32_t invLength)
{
    KDQuery placed = {DescriptorQuery(query, invLength), {}, {}};
    const double length = lengthOf(query);
    int16_t low[kDescriptor], high[kDescriptor];
    for (size_t j = 0; j < kDescriptor; ++j) {
        low[j] = stepsBelow(query[j], length);
        high[j] = static_cast<int16_t>(low[j] + 1);
    }
    repeatInBlock(low, placed.low);
    repeatInBlock(high, placed.high);
    return placed;
}

// A part of the tree that is yet to be visited.
struct Branch
{
    int32_t bound; // the squared distance of its box
    uint32_t node;
    uint32_t child;

    bool isAfter(const Branch& other) const
    {
        return bound != other.bound ? bound > other.bound
               : node != other.node ? node > other.node
                                    : child > other.child;
    }
};

// Best bin first.
class TreeWalk
{
public:
    TreeWalk(const KDSearch& search, const rvkKDTree36s8f32& tree, const KDQuery& query, Branch* branches,
             NearestList& list)
        : m_search(search), m_tree(tree), m_query(query), m_branches(branches), m_list(list)
    {
        // D is 2 - 2 s q.v of vectors of length 1, where s is what the inverse lengths are off: less than |q - v|^2 by
        // 2 |s - 1| at most, and by the rounding of floats.
        const double error = errorOfInverse(query.descriptor.vector, query.descriptor.invLength);
        m_margin = 2 * ((1 + error) * (1 + tree.errorOfInverses) - 1) + 2e-6;
    }

    void run(uint32_t maxChecks)
    {
        uint32_t left = maxChecks ? maxChecks : UINT32_MAX;
        visitNode(0);
        while (m_count && left) {
            std::pop_heap(m_branches, m_branches + m_count, isAfter);
            const Branch branch = m_branches[--m_count];
            if (branch.bound > mostBound())
                return;
            const KDNode& node = m_tree.nodes[branch.node];
            if (node.size[branch.child])
                left -= visitLeaf(node.first[branch.child], std::min(node.size[branch.child], left));
            else
                visitNode(node.first[branch.child]);
        }
    }

private:
    static bool isAfter(const Branch& a, const Branch& b) { return a.isAfter(b); }
    // Beyond it, nothing that a bound stands for finds a place. In steps, since bounds are many and limits few.
    int32_t mostBound() const
    {
        constexpr double steps = double{kBoxScale} * kBoxScale;
        const double most = (m_list.limit() + m_margin) * steps;
        return most >= INT32_MAX ? INT32_MAX : most < 0 ? -1 : static_cast<int32_t>(most);
    }
    void visitNode(uint32_t number)
    {
        const KDNode& node = m_tree.nodes[number];
        int32_t bounds[kChildren];
        m_search.measureBoxes(m_query, node, bounds);
        const int32_t most = mostBound();
        for (uint32_t child = 0; child < node.children; ++child) {
            if (bounds[child] > most)
                continue;
            m_branches[m_count++] = {bounds[child], number, child};
            std::push_heap(m_branches, m_branches + m_count, isAfter);
        }
    }
    uint32_t visitLeaf(size_t block, uint32_t size)
    {
        for (uint32_t done = 0; done < size; done += kBlockDescriptors, ++block) {
            float32_t distances[kBlockDescriptors];
            const size_t first = block * kBlockDescriptors;
            m_search.measureBlock(m_query.descriptor, m_tree.blocks + block * kBlockBytes, m_tree.invLengths + first,
                                  distances);
            for (size_t k = 0; k < kBlockDescriptors && done + k < size; ++k)
                m_list.offer(distances[k], m_tree.indices[first + k]);
        }
        return size;
    }

    const KDSearch& m_search;
    const rvkKDTree36s8f32& m_tree;
    const KDQuery& m_query;
    Branch* m_branches; // a heap
    size_t m_count = 0;
    NearestList& m_list;
    double m_margin;
};

} // namespace

double errorOfInverse(const int8_t* vector, float32_t invLength)
{
    const double length = lengthOf(vector);
    if (length == 0)
        return invLength == 0 ? 0 : HUGE_VAL;
    return std::fabs(invLength * length - 1);
}

rvkStatus createTree(const int8_t* vectors, const float32_t* invLengths, uint32_t count, rvkKDTree36s8f32** tree)
{
    double error = 0;
    for (size_t i = 0; i < count; ++i) {
        const double its = errorOfInverse(vectors + i * kDescriptor, invLengths[i]);
        if (!(its <= kMostErrorOfInverse))
            return RAVIK_EBADPARAM;
        error = std::max(error, its);
    }
    const Scratch<int16_t> coordinates(count, kDescriptor);
    if (!coordinates)
        return RAVIK_ENORES;
    for (size_t i = 0; i < count; ++i) {
        const int8_t* const vector = vectors + i * kDescriptor;
        const double length = lengthOf(vector);
        for (size_t j = 0; j < kDescriptor; ++j)
            coordinates[i * kDescriptor + j] = stepsBelow(vector[j], length);
    }

    constexpr uint32_t alignment = 64;
    const uint32_t nodeCount = Builder::countNodes(count);
    const uint64_t blocks = blocksOf(count), padded = blocks * kBlockDescriptors;
    const uint64_t bytes = alignment + nodeCount * uint64_t{sizeof(KDNode)} +
                           padded * (sizeof(float32_t) + sizeof(uint32_t)) + blocks * kBlockBytes;
    static_assert(sizeof(rvkKDTree36s8f32) <= alignment && sizeof(KDNode) % sizeof(float32_t) == 0);
    auto* const memory =
        bytes <= UINT32_MAX ? static_cast<uint8_t*>(rvkMemAlloc(static_cast<uint32_t>(bytes), alignment)) : nullptr;
    if (!memory)
        return RAVIK_ENORES;
    auto* const nodes = reinterpret_cast<KDNode*>(memory + alignment);
    auto* const inverses = reinterpret_cast<float32_t*>(nodes + nodeCount);
    auto* const order = reinterpret_cast<uint32_t*>(inverses + padded);
    auto* const arranged = reinterpret_cast<int8_t*>(order + padded);

    Builder(count, coordinates.get(), order).build(nodes);
    for (size_t first = 0; first < count; first += kBlockDescriptors) {
        const size_t here = std::min<size_t>(kBlockDescriptors, count - first);
        int8_t together[kBlockBytes];
        for (size_t k = 0; k < kBlockDescriptors; ++k) {
            inverses[first + k] = k < here ? invLengths[order[first + k]] : 0;
            if (k < here)
                std::copy_n(vectors + size_t{order[first + k]} * kDescriptor, kDescriptor, together + k * kDescriptor);
        }
        arrangeBlock(together, here, arranged + first * kDescriptor);
    }
    *tree = new (memory) rvkKDTree36s8f32{nodes, arranged, inverses, order, nodeCount, count, error};
    return RAVIK_SUCCESS;
}

void destroyTree(rvkKDTree36s8f32* tree)
{
    rvkMemFree(tree);
}

rvkStatus searchTree(const KDSearch& search, const rvkKDTree36s8f32& tree, const int8_t* query, float32_t invLenQuery,
                     float32_t maxDistance, uint32_t maxChecks, uint32_t capacity, uint32_t* count, uint32_t* indices,
                     float32_t* distances)
{
    NearestList list(maxDistance, capacity, indices, distances);
    if (capacity) {
        const Scratch<Branch> branches(tree.nodeCount, kChildren);
        if (!branches)
            return RAVIK_ENORES;
        const KDQuery placed = placeQuery(query, invLenQuery);
        TreeWalk(search, tree, placed, branches.get(), list).run(maxChecks);
    }
    *count = list.sort();
    return RAVIK_SUCCESS;
}

} // namespace rvk
