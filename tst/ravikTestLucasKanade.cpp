// KLT: Lucas-Kanade tracking. A level is an argument; adapters make pyramids of three.
#include "groups.h"

#include <ravik/lucaskanade.h>

#include <cmath>

using namespace arguments;

namespace {

template <class T>
struct Packed
{
    rvkPyramidLevel levels[3];

    Packed(const T* level0, const T* level1, const T* level2, uint32_t width, uint32_t height)
        : levels{{const_cast<T*>(level0), width, height},
                 {const_cast<T*>(level1), width / 2, height / 2},
                 {const_cast<T*>(level2), width / 4, height / 4}}
    {
    }
};

void track(decltype(rvkTrackLKOpticalFlowu8)* function, const uint8_t* a0, const uint8_t* a1, const uint8_t* a2,
           const uint8_t* b0, const uint8_t* b1, const uint8_t* b2, uint32_t width, uint32_t height, uint32_t numLevels,
           const float* points1, float* points2, uint32_t numPoints, uint32_t winWidth, uint32_t winHeight,
           uint32_t maxIterations, float epsilon, uint8_t* status)
{
    const Packed<uint8_t> a(a0, a1, a2, width, height), b(b0, b1, b2, width, height);
    function(a.levels, b.levels, numLevels, points1, points2, numPoints, winWidth, winHeight, maxIterations, epsilon,
             status);
}

template <class T>
rvkStatus trackWithErrors(decltype(rvkTrackLKOpticalFlowu8_v2)* function, const T* a0, const T* a1, const T* a2,
                          const T* b0, const T* b1, const T* b2, uint32_t width, uint32_t height, uint32_t numLevels,
                          const float* points1, float* points2, uint32_t numPoints, uint32_t winWidth,
                          uint32_t winHeight, uint32_t maxIterations, float epsilon, float minEigenvalue,
                          uint8_t* status, float* errors)
{
    const Packed<T> a(a0, a1, a2, width, height), b(b0, b1, b2, width, height);
    return function(a.levels, b.levels, numLevels, points1, points2, numPoints, winWidth, winHeight, maxIterations,
                    epsilon, minEigenvalue, status, errors);
}

rvkStatus trackFromGuess(decltype(rvkTrackLKOpticalFlowu8_v3)* function, const uint8_t* a0, uint32_t aStride0,
                         const uint8_t* a1, uint32_t aStride1, const uint8_t* a2, uint32_t aStride2, const uint8_t* b0,
                         uint32_t bStride0, const uint8_t* b1, uint32_t bStride1, const uint8_t* b2, uint32_t bStride2,
                         uint32_t width, uint32_t height, uint32_t numLevels, const float* points1, float* points2,
                         uint32_t numPoints, uint32_t winWidth, uint32_t winHeight, uint32_t maxIterations,
                         float epsilon, float minEigenvalue, uint8_t* status, float* errors, uint32_t useGuess)
{
    const auto level = [=](const uint8_t* pixels, uint32_t k, uint32_t stride) {
        return rvkPyramidLevel_v2{const_cast<uint8_t*>(pixels), width >> k, height >> k, stride};
    };
    const rvkPyramidLevel_v2 a[] = {level(a0, 0, aStride0), level(a1, 1, aStride1), level(a2, 2, aStride2)};
    const rvkPyramidLevel_v2 b[] = {level(b0, 0, bStride0), level(b1, 1, bStride1), level(b2, 2, bStride2)};
    return function(a, b, numLevels, points1, points2, numPoints, winWidth, winHeight, maxIterations, epsilon,
                    minEigenvalue, status, errors, useGuess);
}

} // namespace

const FunctionGroup& lucasKanadeFunctions()
{
    constexpr uint32_t most = 12; // points
    const Argument level0 = src.natural(), level1 = level0.halved(), level2 = level0.quartered();
    const Argument float0 = src.within({{0, 255}}), float1 = float0.halved(), float2 = float0.quartered();
    const Argument points = src.ofSize(2 * most).within({columns(-1, 1), rows(-1, 1)});
    const Argument results = dst.ofSize(2 * most),
                   guesses = updated.ofSize(2 * most).within({columns(-1, 1), rows(-1, 1)});
    const Argument count = capacity(1, most), levels = oneOf({3}).refusing({0, 33, UINT32_MAX});
    const Argument window = oneOf({21, 3, 9, 35}).refusing({0, 1, 2, 8, 257, UINT32_MAX});
    const Argument iterations = oneOf({10, 1, 4}).refusing({0}).limited();
    const Argument epsilon = oneOf({0.01, 0, 0.1}).refusing({-1, NAN}),
                   eigenvalue = oneOf({0.1, 0, 20}).refusing({-1, NAN});
    const Argument status = dst.ofSize(most), errors = status.orNull();
    const Contract threeLevels = Contract().atLeast(4, 4);

    static const FunctionGroup group{
        "ravikklt",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkTrackLKOpticalFlowu8", rvkTrackLKOpticalFlowu8, track, level0, level1, level2, level0,
                             level1, level2, width, height, levels, points, results, count, window, window, iterations,
                             epsilon, status)
                .keeps(threeLevels),
            RVK_TEST_ADAPTED("rvkTrackLKOpticalFlowu8", rvkTrackLKOpticalFlowu8_v2, trackWithErrors<uint8_t>, level0,
                             level1, level2, level0, level1, level2, width, height, levels, points, results, count,
                             window, window, iterations, epsilon, eigenvalue, status, errors)
                .keeps(threeLevels),
            RVK_TEST_ADAPTED("rvkTrackLKOpticalFlowu8_v3", rvkTrackLKOpticalFlowu8_v3, trackFromGuess, level0, stride,
                             level1, stride, level2, stride, level0, stride, level1, stride, level2, stride, width,
                             height, levels, points, guesses, count, window, window, iterations, epsilon, eigenvalue,
                             status, errors, oneOf({0, 1}).refusing({2, UINT32_MAX}))
                .keeps(threeLevels),
            RVK_TEST_ADAPTED("rvkTrackLKOpticalFlowf32", rvkTrackLKOpticalFlowf32, trackWithErrors<float>, float0,
                             float1, float2, float0, float1, float2, width, height, levels, points, results, count,
                             window, window, iterations, epsilon, eigenvalue, status, errors)
                .keeps(threeLevels),
        }};
    return group;
}
