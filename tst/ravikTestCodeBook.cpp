// BGCODEBOOK: background code books. Models are made for the call; what a call makes of them is seen by a comparison.
#include "groups.h"

#include <ravik/codebook.h>

using namespace arguments;

namespace {

// A model for the picture and, where such a picture can have none, for a pixel. Boxes are wide enough for random
// pictures, lists short enough to fill up.
class Model
{
public:
    Model(uint32_t width, uint32_t height)
    {
        constexpr uint32_t most = 1 << 22;
        constexpr uint8_t bounds[] = {60, 50, 70}, below[] = {20, 30, 10}, above[] = {15, 5, 40};
        const bool isUsual = width && height && uint64_t{width} * height <= most;
        m_status = rvkCreateBGCodeBookModel(isUsual ? width : 1, isUsual ? height : 1, &m_model);
        if (m_status == RAVIK_SUCCESS)
            m_status = rvkConfigBGCodeBookModel(m_model, bounds, below, above, 2);
    }
    ~Model() { rvkReleaseBGCodeBookModel(&m_model); }
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    rvkStatus status() const { return m_status; }
    rvkBGCodeBookModel* get() const { return m_model; }

    // The first of these that does not succeed.
    template <class... Calls>
    rvkStatus run(Calls... calls)
    {
        (void)((m_status == RAVIK_SUCCESS && (m_status = calls(m_model)) == RAVIK_SUCCESS) && ...);
        return m_status;
    }

private:
    rvkBGCodeBookModel* m_model = nullptr;
    rvkStatus m_status;
};

rvkStatus update(decltype(&rvkBGCodeBookUpdateu8) function, const uint8_t* src1, const uint8_t* src2, uint32_t width,
                 uint32_t height, uint32_t srcStride, const uint8_t* mask, uint32_t maskStride, uint8_t* dst,
                 uint32_t dstStride)
{
    const auto learn = [=](const uint8_t* src) {
        return [=](rvkBGCodeBookModel* m) { return function(m, src, width, height, srcStride, mask, maskStride); };
    };
    const auto compare = [=](rvkBGCodeBookModel* m) {
        return rvkBGCodeBookDiffu8(m, src2, width, height, srcStride, dst, dstStride, nullptr);
    };
    return Model(width, height).run(learn(src1), learn(src2), learn(src1), compare);
}

rvkStatus compare(decltype(&rvkBGCodeBookDiffu8) function, const uint8_t* src1, const uint8_t* src2, uint32_t width,
                  uint32_t height, uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t* count)
{
    const auto learn = [=](rvkBGCodeBookModel* m) {
        return src1 ? rvkBGCodeBookUpdateu8(m, src1, width, height, srcStride, nullptr, 0) : RAVIK_SUCCESS;
    };
    const auto compare = [=](rvkBGCodeBookModel* m) {
        return function(m, src1 ? src2 : nullptr, width, height, srcStride, dst, dstStride, count);
    };
    return Model(width, height).run(learn, compare);
}

rvkStatus clearStale(decltype(&rvkBGCodeBookClearStaleu8) function, const uint8_t* src1, const uint8_t* src2,
                     uint32_t width, uint32_t height, uint32_t srcStride, uint32_t threshold, const uint8_t* mask,
                     uint32_t maskStride, uint8_t* dst, uint32_t dstStride)
{
    const auto learn = [=](const uint8_t* src) {
        return [=](rvkBGCodeBookModel* m) {
            return src ? rvkBGCodeBookUpdateu8(m, src, width, height, srcStride, nullptr, 0) : RAVIK_SUCCESS;
        };
    };
    const bool isSeen = src1 && src2 && dst;
    const auto clear = [=](rvkBGCodeBookModel* m) {
        return function(isSeen ? m : nullptr, threshold, mask, width, height, maskStride);
    };
    const auto compare = [=](rvkBGCodeBookModel* m) {
        return rvkBGCodeBookDiffu8(m, src1, width, height, srcStride, dst, dstStride, nullptr);
    };
    return Model(width, height).run(learn(src1), learn(src2), clear, compare);
}

} // namespace

const FunctionGroup& codeBookFunctions()
{
    const Argument triples = src.ofChannels(3), threshold = oneOf({0, 1, UINT32_MAX});
    static const FunctionGroup group{
        "ravikbgcodebook",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkBGCodeBook", rvkBGCodeBookUpdateu8, update, triples, triples, width, height, stride,
                             mask.orNull(), stride, dst, stride),
            RVK_TEST_ADAPTED("rvkBGCodeBook", rvkBGCodeBookDiffu8, compare, triples, triples, width, height, stride,
                             dst, stride, value.orNull()),
            RVK_TEST_ADAPTED("rvkBGCodeBook", rvkBGCodeBookClearStaleu8, clearStale, triples, triples, width, height,
                             stride, threshold, mask.orNull(), stride, dst, stride),
        }};
    return group;
}
