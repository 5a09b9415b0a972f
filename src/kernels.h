// Inner kernels: a call is kernel<Kernel::irvkX>()(args...).
#pragma once

#include "dispatch.h"

namespace rvk {

extern Cell kernelCells[kKernels];

template <Kernel row>
typename SignatureOf<row>::Type kernel()
{
    return reinterpret_cast<typename SignatureOf<row>::Type>(kernelCells[static_cast<uint32_t>(row)]);
}

void installReferenceKernels();
void installVectorKernels(); // leaves the C form where there is no vector form

} // namespace rvk
