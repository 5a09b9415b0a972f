// The vector implementations of one instruction set, in a namespace of its own: each unit of this folder is compiled
// once per instruction set, with RVK_ISA set to its name. A definition whose signature deviates from the reference does
// not link.
#pragma once

#include "functions.h"

#ifndef RVK_ISA
#error "compile the vector units with RVK_ISA set to an instruction set: neon, sse42, avx2 or avx512"
#endif

namespace rvk::vecta::RVK_ISA {

#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(decltype(::name) name##V;)
#include "functionList.inc"
#undef RVK_FUNCTION
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(decltype(rvk::name) name##V;)
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
#define RVK_KERNEL(name, reference, vecta) RVK_WHEN_##vecta(decltype(rvk::name##C) name##V;)
#include "kernelList.inc"
#undef RVK_KERNEL

} // namespace rvk::vecta::RVK_ISA
