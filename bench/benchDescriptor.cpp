// Descriptors: distances, patches, scaling, sampling. They come in batches of 1000, one after the other; the first is the
// query.
#include "bench.h"

#include <ravik/descriptor.h>

#include <vector>

namespace {

using namespace bench;

constexpr Picture kBatch = {1000, 1};

template <class T>
const T* const* listOf(const Picture& p, uint32_t length)
{
    static std::vector<const T*> list;
    list.clear();
    for (uint32_t i = 0; i < p.width; ++i)
        list.push_back(p.in<T>() + i * length);
    return list.data();
}

void compareFours(const Picture& p)
{
    const s8* v = p.in<s8>();
    for (uint32_t i = 0; i < p.width; i += 4, v += 4 * 36)
        rvkSumOfSquaredDiffs36x4s8(p.in<s8>(), 0.5f, v, v + 36, v + 72, v + 108, p.in<f32>() + i, p.out<f32>() + i);
}

void compareMany(const Picture& p)
{
    static const s8* const* const list = listOf<s8>(p, 36);
    rvkSumOfSquaredDiffs36xNs8(p.in<s8>(), 0.5f, list, p.in<f32>(), p.width, p.out<f32>());
}

template <class T>
void compareWithList(const Picture& p, void (*function)(const T*, f32, u32, const T* const*, const f32*, u32, f32*))
{
    static const T* const* const list = listOf<T>(p, 128);
    function(p.in<T>(), 0.5f, 128, list, p.in<f32>(), p.width, p.out<f32>());
}

void sortEach(const Picture& p)
{
    for (uint32_t i = 0; i < p.width; ++i)
        rvkSort8Scoresf32(p.in<f32>() + 8 * i, p.out<f32>() + 8 * i);
}

void makeEach(const Picture& p)
{
    for (uint32_t i = 0; i < p.width; ++i)
        rvkDescriptor17x17u8To36s8(p.in<u8>() + i * 17 * 17, 0, p.out<s8>(0) + i * 36, p.out<f32>(1) + i);
}

constexpr Row kRows[] = {
    {"rvkSumOfSquaredDiffs36x4s8", nullptr, traffic(40, 4), RAVIK(compareFours(p)), nullptr, nullptr, kBatch},
    {"rvkSumOfSquaredDiffs36xNs8", nullptr, traffic(40, 4), RAVIK(compareMany(p)), nullptr, nullptr, kBatch},
    {"rvkSumOfSquaredDiffsu8, 128", nullptr, traffic(132, 4), RAVIK(compareWithList(p, rvkSumOfSquaredDiffsu8)),
     nullptr, nullptr, kBatch},
    {"rvkSumOfSquaredDiffss8, 128", nullptr, traffic(132, 4), RAVIK(compareWithList(p, rvkSumOfSquaredDiffss8)),
     nullptr, nullptr, kBatch},
    {"rvkSumOfSquaredDiffsf32, 128", "L2 squared distance f32", traffic(516, 4),
     RAVIK(compareWithList(p, rvkSumOfSquaredDiffsf32)), nullptr, nullptr, kBatch},
    {"rvkSort8Scoresf32", nullptr, traffic(32, 32), RAVIK(sortEach(p)), nullptr, nullptr, kBatch},
    {"rvkVecNormalize36s8f32", nullptr, traffic(40, 144),
     RAVIK(rvkVecNormalize36s8f32(p.in<s8>(), 0, p.in<f32>(), p.width, p.out<f32>(), 0)), nullptr, nullptr, kBatch},
    {"rvkDescriptor17x17u8To36s8", nullptr, traffic(289, 40), RAVIK(makeEach(p)), nullptr, nullptr, kBatch},
    {"rvkDescriptorSampledMeanAndVar36f32", nullptr, traffic(144, 0),
     RAVIK(rvkDescriptorSampledMeanAndVar36f32(p.in<f32>(), p.width, 0, p.out<f32>(0), p.out<f32>(1))), nullptr,
     nullptr, kBatch},
};
const Rows registered(kRows);

} // namespace
