// Dot products. Descriptors come in batches of 1000, one after the other; the first is the query.
#include "bench.h"

#include <ravik/dotproduct.h>

namespace {

using namespace bench;

constexpr Picture kBatch = {1000, 1};

template <uint32_t length, class T, class Dot>
void multiplyEach(const Picture& p, Dot (*function)(const T*, const T*))
{
    const T* const v = p.in<T>();
    Dot* const dots = p.out<Dot>();
    for (uint32_t i = 0; i < p.width; ++i)
        dots[i] = function(v, v + i * length);
}

template <uint32_t length, class T, class Function>
void forEachFour(const Picture& p, Function function)
{
    const T* const v = p.in<T>();
    for (uint32_t i = 0; i < p.width; i += 4) {
        const T* const four = v + i * length;
        function(v, four, four + length, four + 2 * length, four + 3 * length, i);
    }
}

template <uint32_t length, class T, class Dot>
void multiplyByFour(const Picture& p, void (*function)(const T*, const T*, const T*, const T*, const T*, Dot*))
{
    forEachFour<length, T>(p, [&](const T* a, const T* b, const T* c, const T* d, const T* e, uint32_t i) {
        function(a, b, c, d, e, p.out<Dot>() + i);
    });
}

template <uint32_t length, class T>
void scaleByFour(const Picture& p,
                 void (*function)(const T*, float, const T*, const T*, const T*, const T*, const float*, float*))
{
    const float factors[4] = {1, 2, 3, 4};
    forEachFour<length, T>(p, [&](const T* a, const T* b, const T* c, const T* d, const T* e, uint32_t i) {
        function(a, 0.5f, b, c, d, e, factors, p.out<f32>() + i);
    });
}

template <class T, class Dot>
void multiplyStrings(const Picture& p, Dot (*function)(const T*, const T*, uint32_t))
{
    for (uint32_t i = 0; i < p.width; ++i)
        p.out<Dot>()[i] = function(p.in<T>(), p.in<T>() + i * 128, 128);
}

template <u32 size = 8, class T, class D>
void multiplyBlocks(const Picture& p, rvkStatus (*function)(const T*, const T*, uint32_t, uint32_t, uint32_t, uint32_t,
                                                            uint32_t, uint32_t, D*, uint32_t))
{
    function(p.in<T>(0), p.in<T>(1), p.width, p.height, 0, 0, size, size, p.out<D>(), 0);
}

#if RVK_BENCH_OPENCV
template <class T, uint32_t length>
void multiplyEachByOpenCv(const Picture& p)
{
    const auto row = [](const T* v) { return cv::Mat(1, length, cv::DataType<T>::type, const_cast<T*>(v)); };
    const T* const v = p.in<T>();
    const cv::Mat query = row(v);
    for (uint32_t i = 0; i < p.width; ++i)
        p.out<f32>()[i] = static_cast<f32>(query.dot(row(v + i * length)));
}
#endif
#define OPENCV_DOTS(T, length) OPENCV(multiplyEachByOpenCv<T, length>(p))

constexpr Row kRows[] = {
    {"rvkDotProduct36x1s8", nullptr, traffic(36, 4), RAVIK(multiplyEach<36>(p, rvkDotProduct36x1s8)),
     OPENCV_DOTS(s8, 36), nullptr, kBatch},
    {"rvkDotProduct36x4s8", nullptr, traffic(36, 4), RAVIK(multiplyByFour<36>(p, rvkDotProduct36x4s8)),
     OPENCV_DOTS(s8, 36), nullptr, kBatch},
    {"rvkDotProductNorm36x4s8", nullptr, traffic(36, 4), RAVIK(scaleByFour<36>(p, rvkDotProductNorm36x4s8)),
     OPENCV_DOTS(s8, 36), nullptr, kBatch},
    {"rvkDotProduct36x1u8", nullptr, traffic(36, 4), RAVIK(multiplyEach<36>(p, rvkDotProduct36x1u8)),
     OPENCV_DOTS(u8, 36), nullptr, kBatch},
    {"rvkDotProduct36x4u8", nullptr, traffic(36, 4), RAVIK(multiplyByFour<36>(p, rvkDotProduct36x4u8)),
     OPENCV_DOTS(u8, 36), nullptr, kBatch},
    {"rvkDotProductNorm36x4u8", nullptr, traffic(36, 4), RAVIK(scaleByFour<36>(p, rvkDotProductNorm36x4u8)),
     OPENCV_DOTS(u8, 36), nullptr, kBatch},
    {"rvkDotProduct64x1s8", nullptr, traffic(64, 4), RAVIK(multiplyEach<64>(p, rvkDotProduct64x1s8)),
     OPENCV_DOTS(s8, 64), nullptr, kBatch},
    {"rvkDotProduct64x4s8", nullptr, traffic(64, 4), RAVIK(multiplyByFour<64>(p, rvkDotProduct64x4s8)),
     OPENCV_DOTS(s8, 64), nullptr, kBatch},
    {"rvkDotProductNorm64x4s8", nullptr, traffic(64, 4), RAVIK(scaleByFour<64>(p, rvkDotProductNorm64x4s8)),
     OPENCV_DOTS(s8, 64), nullptr, kBatch},
    {"rvkDotProduct64x1u8", nullptr, traffic(64, 4), RAVIK(multiplyEach<64>(p, rvkDotProduct64x1u8)),
     OPENCV_DOTS(u8, 64), nullptr, kBatch},
    {"rvkDotProduct64x4u8", nullptr, traffic(64, 4), RAVIK(multiplyByFour<64>(p, rvkDotProduct64x4u8)),
     OPENCV_DOTS(u8, 64), nullptr, kBatch},
    {"rvkDotProductNorm64x4u8", nullptr, traffic(64, 4), RAVIK(scaleByFour<64>(p, rvkDotProductNorm64x4u8)),
     OPENCV_DOTS(u8, 64), nullptr, kBatch},
    {"rvkDotProduct128x1s8", "dot product s8", traffic(128, 4), RAVIK(multiplyEach<128>(p, rvkDotProduct128x1s8)),
     OPENCV_DOTS(s8, 128), nullptr, kBatch},
    {"rvkDotProduct128x4s8", "dot product s8", traffic(128, 4), RAVIK(multiplyByFour<128>(p, rvkDotProduct128x4s8)),
     OPENCV_DOTS(s8, 128), nullptr, kBatch},
    {"rvkDotProductNorm128x4s8", "dot product s8", traffic(128, 4),
     RAVIK(scaleByFour<128>(p, rvkDotProductNorm128x4s8)), OPENCV_DOTS(s8, 128), nullptr, kBatch},
    {"rvkDotProduct128x1u8", nullptr, traffic(128, 4), RAVIK(multiplyEach<128>(p, rvkDotProduct128x1u8)),
     OPENCV_DOTS(u8, 128), nullptr, kBatch},
    {"rvkDotProduct128x4u8", nullptr, traffic(128, 4), RAVIK(multiplyByFour<128>(p, rvkDotProduct128x4u8)),
     OPENCV_DOTS(u8, 128), nullptr, kBatch},
    {"rvkDotProductNorm128x4u8", nullptr, traffic(128, 4), RAVIK(scaleByFour<128>(p, rvkDotProductNorm128x4u8)),
     OPENCV_DOTS(u8, 128), nullptr, kBatch},
    {"rvkDotProduct8x8u8", nullptr, traffic(64, 4), RAVIK(multiplyEach<64>(p, rvkDotProduct8x8u8)), OPENCV_DOTS(u8, 64),
     nullptr, kBatch},
    {"rvkDotProduct11x12u8", nullptr, traffic(132, 4), RAVIK(multiplyEach<132>(p, rvkDotProduct11x12u8)),
     OPENCV_DOTS(u8, 132), nullptr, kBatch},
    {"rvkDotProducts8, 128", "dot product s8", traffic(128, 4), RAVIK(multiplyStrings(p, rvkDotProducts8)),
     OPENCV_DOTS(s8, 128), nullptr, kBatch},
    {"rvkDotProductu8, 128", nullptr, traffic(128, 4), RAVIK(multiplyStrings(p, rvkDotProductu8)), OPENCV_DOTS(u8, 128),
     nullptr, kBatch},
    {"rvkDotProductf32, 128", nullptr, traffic(512, 4), RAVIK(multiplyStrings(p, rvkDotProductf32)),
     OPENCV_DOTS(f32, 128), nullptr, kBatch},
    {"rvkBlockDotProductu8, 3x3", nullptr, traffic(2, 4.0 / 9), RAVIK(multiplyBlocks<3>(p, rvkBlockDotProductu8))},
    {"rvkBlockDotProductu8, 8x8", nullptr, traffic(2, 1.0 / 16), RAVIK(multiplyBlocks(p, rvkBlockDotProductu8))},
    {"rvkBlockDotProductf32, 8x8", nullptr, traffic(8, 1.0 / 16), RAVIK(multiplyBlocks(p, rvkBlockDotProductf32))},
    {"rvkDotProductu8", "dot of planes u8", streaming(2, 0),
     RAVIK(p.out<u32>()[0] = rvkDotProductu8(p.in<u8>(0), p.in<u8>(1), p.width* p.height)),
     OPENCV(p.out<f32>()[0] = static_cast<f32>(p.matIn<u8>(0).dot(p.matIn<u8>(1))))},
};
const Rows registered(kRows);

} // namespace
