#include "kernels.h"

#include "vecta/column.h"

#include <algorithm>
#include <iterator>

namespace rvk {

#define RVK_KERNEL(name, reference, vecta) RVK_REFERENCE_##reference(name),

Cell kernelCells[kKernels] = {
#include "kernelList.inc"
};

void installReferenceKernels()
{
    static const Cell references[kKernels] = {
#include "kernelList.inc"
    };
    std::copy(std::begin(references), std::end(references), kernelCells);
}

void installVectorKernels()
{
    const vecta::Variant* variant = vecta::chosenVariant();
    for (const vecta::Entry* entry = variant ? variant->kernels : nullptr; entry && entry->implementation; entry++)
        kernelCells[entry->slot] = entry->implementation;
}

} // namespace rvk
