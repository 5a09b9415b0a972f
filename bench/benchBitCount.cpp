// Bit counts and Hamming distances. Vectors come in batches of 1000, one after the other; distances are those from the
// first.
#include "bench.h"

#include <ravik/bitcount.h>

#if RVK_BENCH_OPENCV
#include <opencv2/core/hal/hal.hpp>
#endif

namespace {

using namespace bench;

constexpr Picture kBatch = {1000, 1};

template <uint32_t length, class Function>
void countEach(const Picture& p, Function function)
{
    const u8* const v = p.in<u8>();
    u32* const counts = p.out<u32>();
    for (uint32_t i = 0; i < p.width; ++i)
        counts[i] = static_cast<u32>(function(v + i * length));
}

template <uint32_t length, class Function>
void compareEach(const Picture& p, Function function)
{
    const u8* const a = p.in<u8>();
    countEach<length>(p, [=](const u8* b) { return function(a, b); });
}

template <uint32_t length, class Function>
void countByFour(const Picture& p, Function function)
{
    const u8* const v = p.in<u8>();
    u32* const counts = p.out<u32>();
    for (uint32_t i = 0; i < p.width; i += 4) {
        const u8* const four = v + i * length;
        function(four, four + length, four + 2 * length, four + 3 * length, counts + i);
    }
}

template <uint32_t length, class Function>
void compareByFour(const Picture& p, Function function)
{
    const u8* const a = p.in<u8>();
    countByFour<length>(p, [=](const u8* b0, const u8* b1, const u8* b2, const u8* b3, u32* distances) {
        function(a, b0, b1, b2, b3, distances);
    });
}

#define OPENCV_COUNTS(length) OPENCV(countEach<length>(p, [](const u8* v) { return cv::hal::normHamming(v, length); }))
#define OPENCV_DISTANCES(length) \
    OPENCV(compareEach<length>(p, [](const u8* a, const u8* b) { return cv::hal::normHamming(a, b, length); }))

constexpr Row kRows[] = {
    {"rvkBitCount32x1u8", nullptr, traffic(32, 4), RAVIK(countEach<32>(p, rvkBitCount32x1u8)), OPENCV_COUNTS(32),
     nullptr, kBatch},
    {"rvkBitCount32x4u8", nullptr, traffic(32, 4), RAVIK(countByFour<32>(p, rvkBitCount32x4u8)), OPENCV_COUNTS(32),
     nullptr, kBatch},
    {"rvkBitCount64x1u8", nullptr, traffic(64, 4), RAVIK(countEach<64>(p, rvkBitCount64x1u8)), OPENCV_COUNTS(64),
     nullptr, kBatch},
    {"rvkBitCount64x4u8", nullptr, traffic(64, 4), RAVIK(countByFour<64>(p, rvkBitCount64x4u8)), OPENCV_COUNTS(64),
     nullptr, kBatch},
    {"rvkBitCountu32", nullptr, streaming(4, 0),
     RAVIK(p.out<u32>()[0] = rvkBitCountu32(p.in<u32>(), p.width* p.height)),
     OPENCV(p.out<f32>()[0] = static_cast<f32>(cv::norm(p.matIn<u8>(0, 4).reshape(1), cv::NORM_HAMMING)))},
    {"rvkBitCountu8", nullptr, streaming(1, 0), RAVIK(p.out<u32>()[0] = rvkBitCountu8(p.in<u8>(), p.width* p.height)),
     OPENCV(p.out<f32>()[0] = static_cast<f32>(cv::norm(p.matIn<u8>(), cv::NORM_HAMMING)))},

    {"rvkHammingDistance32x1u8", "Hamming distance 32 B", traffic(32, 4),
     RAVIK(compareEach<32>(p, rvkHammingDistance32x1u8)), OPENCV_DISTANCES(32), nullptr, kBatch},
    {"rvkHammingDistance32x1u8a4", "Hamming distance 32 B", traffic(32, 4),
     RAVIK(compareEach<32>(p, rvkHammingDistance32x1u8a4)), OPENCV_DISTANCES(32), nullptr, kBatch},
    {"rvkHammingDistance32x4u8a4", "Hamming distance 32 B", traffic(32, 4),
     RAVIK(compareByFour<32>(p, rvkHammingDistance32x4u8a4)), OPENCV_DISTANCES(32), nullptr, kBatch},
    {"rvkHammingDistance64x1u8", nullptr, traffic(64, 4), RAVIK(compareEach<64>(p, rvkHammingDistance64x1u8)),
     OPENCV_DISTANCES(64), nullptr, kBatch},
    {"rvkHammingDistance64x1u8a4", nullptr, traffic(64, 4), RAVIK(compareEach<64>(p, rvkHammingDistance64x1u8a4)),
     OPENCV_DISTANCES(64), nullptr, kBatch},
    {"rvkHammingDistance64x4u8", nullptr, traffic(64, 4), RAVIK(compareByFour<64>(p, rvkHammingDistance64x4u8)),
     OPENCV_DISTANCES(64), nullptr, kBatch},
    {"rvkHammingDistance64x4u8a4", nullptr, traffic(64, 4), RAVIK(compareByFour<64>(p, rvkHammingDistance64x4u8a4)),
     OPENCV_DISTANCES(64), nullptr, kBatch},
    {"rvkHammingDistanceu8, 32 bytes", "Hamming distance 32 B", traffic(32, 4),
     RAVIK(compareEach<32>(p, [](const u8* a, const u8* b) { return rvkHammingDistanceu8(a, b, 32); })),
     OPENCV_DISTANCES(32), nullptr, kBatch},
    {"rvkHammingDistanceu8", nullptr, streaming(2, 0),
     RAVIK(p.out<u32>()[0] = rvkHammingDistanceu8(p.in<u8>(0), p.in<u8>(1), p.width* p.height)),
     OPENCV(p.out<f32>()[0] = static_cast<f32>(cv::norm(p.matIn<u8>(0), p.matIn<u8>(1), cv::NORM_HAMMING))),
     LIBYUV(p.out<u32>()[0] = static_cast<u32>(
                libyuv::ComputeHammingDistance(p.in<u8>(0), p.in<u8>(1), static_cast<int>(p.width* p.height))))},
};
const Rows registered(kRows);

} // namespace
