// Vector implementations of searches for descriptors.
#include "vecta/simd/tiles.h"
#include "vecta/vecta.h"

#include "cpu/ravikSearchC.h"

namespace rvk {
decltype(::rvkLinearSearch8x36s8) rvkLinearSearch8x36s8C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- blocks of eight ------------------------------------------------------------------------------------------------

constexpr size_t kLanes = Vec<int32_t>::lanes;
constexpr size_t kParts = kLanes < kBlockDescriptors ? kBlockDescriptors / kLanes : 1;
constexpr size_t kPart = kBlockDescriptors / kParts; // numbers of a block in one vector

template <class T>
using OfBlock = Vecs<T, kParts>;

// The sums of eight descriptors or boxes: add(sum, start) adds the pairs from element `start` of a block on.
template <class Add>
RVK_INLINE OfBlock<int32_t> sumPairs(Add add)
{
    constexpr size_t step = Vec<int16_t>::lanes;
    OfBlock<int32_t> sums = {};
    unrolled<kBlockBytes / step>([&](auto i) RVK_INLINE_LAMBDA {
        Vec<int32_t>& sum = sums[i % kParts];
        sum = add(sum, i * step);
    });
    if constexpr (kLanes > kPart)
        sums[0] = sums[0] + extract<kPart>(sums[0], sums[0]);
    return sums;
}

template <class T>
RVK_INLINE void storeOfBlock(T* p, const OfBlock<T>& v)
{
    if constexpr (kLanes > kPart)
        storePartial(p, v[0], kPart);
    else
        store(p, v);
}

RVK_INLINE OfBlock<float> loadOfBlock(const float* p)
{
    if constexpr (kLanes > kPart)
        return {{loadPartial(p, kPart)}};
    else
        return loadVecs<kParts>(p);
}

RVK_INLINE OfBlock<float> distancesOf(const int8_t* block, const int8_t* query, float twiceInvLength,
                                      const OfBlock<float>& invLengths)
{
    const OfBlock<int32_t> dots = sumPairs([&](Vec<int32_t> sum, size_t start) RVK_INLINE_LAMBDA {
        return addDotOfPairs(sum, block + start, query + start);
    });
    OfBlock<float> distances;
    unrolled<kParts>([&](auto i) RVK_INLINE_LAMBDA {
        distances[i] = abs(splat(2.0f) - (splat(twiceInvLength) * invLengths[i]) * toFloat(dots[i]));
    });
    return distances;
}

// ---- what the walks through trees ask for ---------------------------------------------------------------------------

void measureBlock(const DescriptorQuery& query, const int8_t* block, const float32_t* invLengths, float32_t* distances)
{
    storeOfBlock(distances,
                 distancesOf(block, query.block, query.invLength + query.invLength, loadOfBlock(invLengths)));
}

void measureBoxes(const KDQuery& query, const KDNode& node, int32_t* bounds)
{
    storeOfBlock(bounds, sumPairs([&](Vec<int32_t> sum, size_t i) RVK_INLINE_LAMBDA {
                     const Vec<int16_t> below = load(node.low + i) - load(query.high + i);
                     const Vec<int16_t> above = load(query.low + i) - load(node.high + i);
                     const Vec<int16_t> outside = max(max(below, above), zero<int16_t>());
                     return sum + dotPairs(outside, outside);
                 }));
}

// The squared distance of two descriptors, spread over lanes.
RVK_INLINE Vec<uint32_t> squaredDifference(const int8_t* a, const int8_t* b)
{
    const auto add = [](Vec<uint32_t> sum, Vec<int8_t> x, Vec<int8_t> y) RVK_INLINE_LAMBDA {
        const Vec<uint8_t> difference = bitCast<uint8_t>(absDiff(x, y));
        return addDot(sum, difference, difference);
    };
    constexpr size_t lanes = Vec<int8_t>::lanes, whole = kDescriptor / lanes, rest = kDescriptor % lanes;
    Vec<uint32_t> sum = zero<uint32_t>();
    unrolled<whole>([&](auto i) RVK_INLINE_LAMBDA { sum = add(sum, load(a + i * lanes), load(b + i * lanes)); });
    return add(sum, loadPartial(a + whole * lanes, rest), loadPartial(b + whole * lanes, rest));
}

void measureCenters(const int8_t* descriptor, const int8_t* centers, uint32_t* distances)
{
    constexpr size_t together = 4;
    uint32_t all[(kBranches + together - 1) / together * together];
    for (size_t i = 0; i < kBranches; i += together) {
        Vecs<uint32_t, together> sums;
        unrolled<together>([&](auto n) RVK_INLINE_LAMBDA {
            sums[n] = squaredDifference(descriptor, centers + least(i + n, kBranches - 1) * kDescriptor);
        });
        storeSums(all + i, sums);
    }
    __builtin_memcpy(distances, all, kBranches * sizeof *all);
}

// Whether the products with all inverse lengths are the reference's, although 32-bit Arm takes subnormal ones for zero.
RVK_INLINE bool isPlain(float twiceInvLength)
{
    const float magnitude = __builtin_fabsf(twiceInvLength);
    return magnitude == 0 || (magnitude >= 0x1p-100f && magnitude <= 0x1p80f);
}

} // namespace

// Pairs of elements are transposed.
rvkStatus rvkLinearSearchPrepare8x36s8V(const int8_t* vectors, uint32_t vectorCount, int8_t* prepared)
{
    using Square = Tile<uint16_t, 16>;
    static_assert(Square::rows == kBlockDescriptors && Square::columns == 8);
    constexpr size_t rowBytes = 2 * kBlockDescriptors;
    size_t left = vectorCount;
    for (; left >= kBlockDescriptors; left -= kBlockDescriptors) {
        unrolled<3>([&](auto i) RVK_INLINE_LAMBDA {
            constexpr size_t pair = i < 2 ? 8 * i : kBlockPairs - 8; // the last ones overlap those before
            Square::transpose<0>(reinterpret_cast<const uint8_t*>(vectors) + 2 * pair, kDescriptor,
                                 reinterpret_cast<uint8_t*>(prepared) + rowBytes * pair, rowBytes);
        });
        vectors += kBlockBytes;
        prepared += kBlockBytes;
    }
    if (left)
        arrangeBlock(vectors, left, prepared);
    return RAVIK_SUCCESS;
}

rvkStatus rvkLinearSearch8x36s8V(const int8_t* prepared, const float32_t* invLengths, uint32_t vectorCount,
                                 const int8_t* query, float32_t invLenQuery, float32_t maxDistance, uint32_t capacity,
                                 uint32_t* count, uint32_t* indices, float32_t* distances)
{
    const float twice = invLenQuery + invLenQuery;
    if (!isPlain(twice))
        return rvkLinearSearch8x36s8C(prepared, invLengths, vectorCount, query, invLenQuery, maxDistance, capacity,
                                      count, indices, distances);
    const DescriptorQuery prototype(query, invLenQuery);
    NearestList list(maxDistance, capacity, indices, distances);
    float padded[kBlockDescriptors] = {};
    for (size_t first = 0; first < vectorCount; first += kBlockDescriptors) {
        const size_t here = least(kBlockDescriptors, vectorCount - first);
        const float* inverses = invLengths + first;
        if (here < kBlockDescriptors) {
            __builtin_memcpy(padded, inverses, here * sizeof(float));
            inverses = padded;
        }
        const OfBlock<float> found =
            distancesOf(prepared + first * kDescriptor, prototype.block, twice, loadOfBlock(inverses));
        const Vec<float> limit = splat(list.limit());
        Mask<float> isNear = ~greater(found[0], limit);
        if constexpr (kParts > 1)
            isNear = isNear | ~greater(found[1], limit);
        if (!any(isNear))
            continue;
        float32_t each[kBlockDescriptors];
        storeOfBlock(each, found);
        for (size_t k = 0; k < here; ++k)
            list.offer(each[k], static_cast<uint32_t>(first + k));
    }
    *count = list.sort();
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikSearchForms.h"
