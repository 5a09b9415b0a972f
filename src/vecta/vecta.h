// What the units of this folder have in common: each is compiled once per instruction set, with RVK_ISA set to its name,
// into a namespace of its own.
//
// A unit includes the public header of its family and not the list of all functions, so that a new function does not
// compile every unit anew. A definition whose signature deviates from its declaration does not link: column.cpp
// asks for each function by the type of the public one. References that a unit calls it declares by that type, too:
//
//     namespace rvk {
//     decltype(::rvkAddWeightedu8) rvkAddWeightedu8C;
//     }
#pragma once

#include <ravik/types.h>

#include <cstddef>
#include <cstdint>

#ifndef RVK_ISA
#error "compile the vector units with RVK_ISA set to an instruction set: neon, sse42, avx2 or avx512"
#endif
