#include "conversions.h"

namespace rvk {

namespace {

uintptr_t addressOf(const Extent& plane)
{
    return reinterpret_cast<uintptr_t>(plane.data);
}

bool holdRows(const Extent* planes, uint32_t count)
{
    return std::all_of(planes, planes + count, [](const Extent& p) { return p.data && p.stride >= p.rowSize; });
}

// A destination overlaps a source, or another destination.
bool imagesOverlap(const PlanesOfCall& call)
{
    for (uint32_t j = call.sources; j < call.sources + call.targets; ++j)
        for (uint32_t i = 0; i < j; ++i)
            if (overlap(call.planes[i], call.planes[j]))
                return true;
    return false;
}

bool isInPlace(const PlanesOfCall& call)
{
    const Extent &src = call.planes[0], &dst = call.planes[call.sources];
    return call.mayRunInPlace && src.data == dst.data && src.stride == dst.stride;
}

} // namespace

bool overlap(const Extent& a, const Extent& b)
{
    if (addressOf(a) > addressOf(b))
        return overlap(b, a);
    const uint64_t distance = addressOf(b) - addressOf(a);
    if (distance >= a.size())
        return false;
    const uint64_t column = distance % a.stride;
    return a.stride != b.stride || column < a.rowSize || column + b.rowSize > a.stride;
}

RVK_IMPL chooseTarget(Slot slot, const PlanesOfCall& call)
{
    return chooseTarget(slot, [&] {
        return std::all_of(call.planes, call.planes + call.sources + call.targets,
                           [](const Extent& plane) { return aligned(8, plane.data, plane.stride); }) &&
               enoughWork(call.width, call.height);
    });
}

const char* violatedCondition(const PlanesOfCall& call)
{
    if (!call.width || !call.height || !holdRows(call.planes, call.sources))
        return call.sourceCondition;
    if (!holdRows(call.planes + call.sources, call.targets))
        return call.targetCondition;
    if (call.width < call.leastWidth)
        return "srcWidth > 1";
    return !isInPlace(call) && imagesOverlap(call) ? kNoOverlap : nullptr;
}

} // namespace rvk
