// HOG: histograms of oriented gradients, by handles of either method.
#include "groups.h"

#include <ravik/hog.h>

#include <algorithm>

using namespace arguments;

namespace {

constexpr uint32_t kDalalCell = 8, kDalalBlock = 2, kDalalBins = 9, kFhogCell = 4, kFhogValues = 31;
constexpr uint32_t kDalalValues = kDalalBlock * kDalalBlock * kDalalBins;

class Handle
{
public:
    Handle(uint32_t method, uint32_t cellSize)
        : m_status(rvkHOGInit(method, cellSize, kDalalBlock, 1, kDalalBins, &m_handle))
    {
    }
    ~Handle() { rvkHOGDeInit(m_handle); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    rvkStatus status() const { return m_status; }
    const rvkHOG* get() const { return m_handle; }

private:
    rvkHOG* m_handle = nullptr;
    rvkStatus m_status;
};

template <uint32_t method, uint32_t cellSize>
rvkStatus extract(decltype(&rvkExtractHOGu16) function, const uint8_t* src, uint32_t width, uint32_t height,
                  uint32_t stride, uint16_t* dst, uint32_t dstStride)
{
    const Handle hog(method, cellSize);
    return hog.status() == RAVIK_SUCCESS ? function(hog.get(), src, width, height, stride, dst, dstStride)
                                         : hog.status();
}

// As many values for each block as given, of blocks of `size` cells.
Argument blocks(uint32_t cellSize, uint32_t size, uint32_t values)
{
    const auto count = [=](uint32_t pixels) -> uint64_t { return std::max(pixels / cellSize + 1, size) - size; };
    return dst.measuring({[=](const CaseSizes& s) {
                              return ImageSize{count(static_cast<uint32_t>(s.picture.columns)) * values,
                                               count(static_cast<uint32_t>(s.picture.rows))};
                          },
                          std::to_string(values) + " values a block"});
}

} // namespace

const FunctionGroup& hogFunctions()
{
    constexpr float tolerance = 16;
    static const FunctionGroup group{
        "ravikhog",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkExtractHOGu16", rvkExtractHOGu16, (extract<RAVIK_HOG_DALAL, kDalalCell>),
                             src.natural(), width, height, stride, blocks(kDalalCell, kDalalBlock, kDalalValues),
                             stride)
                .within(tolerance)
                .keeps(Contract().atLeast(kDalalBlock * kDalalCell, kDalalBlock * kDalalCell)),
            RVK_TEST_ADAPTED("rvkExtractHOGu16_FHOG", rvkExtractHOGu16, (extract<RAVIK_HOG_FHOG, kFhogCell>),
                             src.natural(), width, height, stride, blocks(kFhogCell, 1, kFhogValues), stride)
                .named("rvkExtractHOGu16_FHOG")
                .within(tolerance)
                .keeps(Contract().atLeast(kFhogCell, kFhogCell)),
        }};
    return group;
}
