// OFBM, SHIFT and MOTION: trackers.
#include "groups.h"

#include <ravik/tracking.h>

#include <algorithm>

using namespace arguments;

namespace {

rvkStatus trackBlocks(decltype(rvkTrackBMOpticalFlow16x16u8)* function, const uint8_t* src1, const uint8_t* src2,
                      uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t roiLeft, uint32_t roiTop,
                      uint32_t roiWidth, uint32_t roiHeight, uint32_t shiftSize, uint32_t searchWidth,
                      uint32_t searchHeight, uint32_t searchStep, uint32_t flags, uint32_t* numMv, uint32_t* locX,
                      uint32_t* locY, uint32_t* mvX, uint32_t* mvY)
{
    const auto end = [](uint64_t begin, uint32_t length) {
        return static_cast<uint32_t>(std::min<uint64_t>(begin + length, UINT32_MAX));
    };
    return function(src1, src2, srcWidth, srcHeight, srcStride, roiLeft, roiTop, end(roiLeft, roiWidth),
                    end(roiTop, roiHeight), shiftSize, searchWidth, searchHeight, searchStep, flags, numMv, locX, locY,
                    mvX, mvY);
}

// Adds what the window became to `moved`, which is left alone when there is no window or nothing becomes of it.
class Window
{
public:
    Window(int32_t x, int32_t y, int32_t width, int32_t height, int32_t* moved)
        : m_rectangle{x, y, width, height}, m_start(m_rectangle), m_moved(moved)
    {
    }
    ~Window()
    {
        if (!m_moved)
            return;
        add(m_moved[0], m_rectangle.x, m_start.x);
        add(m_moved[1], m_rectangle.y, m_start.y);
        add(m_moved[2], m_rectangle.width, m_start.width);
        add(m_moved[3], m_rectangle.height, m_start.height);
    }
    Window(const Window&) = delete;
    rvkRectangle* get() { return m_moved ? &m_rectangle : nullptr; }

private:
    static void add(int32_t& sum, int32_t to, int32_t from)
    {
        sum =
            static_cast<int32_t>(static_cast<uint32_t>(sum) + static_cast<uint32_t>(to) - static_cast<uint32_t>(from));
    }

    rvkRectangle m_rectangle;
    const rvkRectangle m_start;
    int32_t* const m_moved;
};

// What a stride has beyond whole pixels counts where the window begins, and would lead out of the memory that is drawn.
template <class T>
uint32_t wholePixels(uint32_t stride)
{
    return stride / sizeof(T) * sizeof(T);
}

template <class T>
uint32_t shift(uint32_t (*function)(const T*, uint32_t, uint32_t, uint32_t, rvkRectangle*, uint32_t, float32_t),
               const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t x, int32_t y,
               int32_t windowWidth, int32_t windowHeight, int32_t* moved, uint32_t maxIterations, float32_t epsilon)
{
    Window window(x, y, windowWidth, windowHeight, moved);
    return function(src, srcWidth, srcHeight, wholePixels<T>(srcStride), window.get(), maxIterations, epsilon);
}

template <class T>
uint32_t track(uint32_t (*function)(const T*, uint32_t, uint32_t, uint32_t, rvkRectangle*, uint32_t, float32_t,
                                    rvkRotatedBox*),
               const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t x, int32_t y,
               int32_t windowWidth, int32_t windowHeight, int32_t* moved, uint32_t maxIterations, float32_t epsilon,
               float32_t* box)
{
    Window window(x, y, windowWidth, windowHeight, moved);
    return function(src, srcWidth, srcHeight, wholePixels<T>(srcStride), window.get(), maxIterations, epsilon,
                    reinterpret_cast<rvkRotatedBox*>(box));
}

} // namespace

const FunctionGroup& blockMatchingFunctions()
{
    // The lists have room for a picture of 1920x1080. Smaller shifts find more, larger searches take long.
    Argument shiftSize = oneOf({16, 20, 37}).refusing({0});
    shiftSize.isCapacity = true;
    const Argument vectors = list(120 * 70), frame = src.natural(), search = capacity(0, 12);
    const Argument searchStep = oneOf({4, 1, 2}).refusing({0});

    static const FunctionGroup group{
        "ravikofbm",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkTrackBMOpticalFlow16x16u8", rvkTrackBMOpticalFlow16x16u8, trackBlocks, frame, frame,
                             width, height, stride, left, top, rectangleWidth.atLeast(16), rectangleHeight.atLeast(16),
                             shiftSize, search, search, searchStep, any, value, vectors, vectors, vectors, vectors)
                .keeps(Contract().atLeast(16, 16)),
        }};
    return group;
}

const FunctionGroup& shiftFunctions()
{
    const Argument x = at(columns(-20, 20)), y = at(rows(-20, 20)), windowWidth = at(widths(0, 1.2)),
                   windowHeight = at(heights(0, 1.2)), moved = updated.ofSize(4), steps = between(0, 30),
                   epsilon = between(0, 2), box = dst.ofSize(5);

    static const FunctionGroup group{
        "ravikshift",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkMeanShiftu8", rvkMeanShiftu8, shift<uint8_t>, src, width, height, stride, x, y,
                             windowWidth, windowHeight, moved, steps, epsilon),
            RVK_TEST_ADAPTED("rvkMeanShifts32", rvkMeanShifts32, shift<int32_t>, src, width, height, stride, x, y,
                             windowWidth, windowHeight, moved, steps, epsilon),
            RVK_TEST_ADAPTED("rvkMeanShiftf32", rvkMeanShiftf32, shift<float32_t>, src, width, height, stride, x, y,
                             windowWidth, windowHeight, moved, steps, epsilon),
            RVK_TEST_ADAPTED("rvkConAdaTracku8", rvkConAdaTracku8, track<uint8_t>, src, width, height, stride, x, y,
                             windowWidth, windowHeight, moved, steps, epsilon, box),
            RVK_TEST_ADAPTED("rvkConAdaTracks32", rvkConAdaTracks32, track<int32_t>, src, width, height, stride, x, y,
                             windowWidth, windowHeight, moved, steps, epsilon, box),
            RVK_TEST_ADAPTED("rvkConAdaTrackf32", rvkConAdaTrackf32, track<float32_t>, src, width, height, stride, x, y,
                             windowWidth, windowHeight, moved, steps, epsilon, box),
        }};
    return group;
}

const FunctionGroup& motionHistoryFunctions()
{
    static const FunctionGroup group{
        "ravikmotion",
        "rvk",
        false,
        {
            RVK_TEST(rvkUpdateMotionHistoryu8s32, mask, width, height, stride, updated, stride, any, any),
        }};
    return group;
}
