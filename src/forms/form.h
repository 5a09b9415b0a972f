// Forms: functions that only forward, to a driver or to another form, with the same text in the reference and in the
// vector implementation. A family's forms stand once, in src/forms/ravikXxxForms.h, which its unit in src/cpu and its
// unit in src/vecta both include at their end, outside of any namespace, after the drivers that the forms call:
//
//     namespace RVK_ROOM {
//
//     rvkStatus RVK_FORM(rvkAdds16)(const int16_t* src1, ...)
//     {
//         return RVK_FORM(rvkAdds16_v2)(src1, ..., RAVIK_POLICY_SATURATE, dst, dstStride);
//     }
//
//     } // namespace RVK_ROOM
//
// What forms call before it is defined, or of another family, they declare by the type of the public function:
//
//     decltype(::rvkAdds16_v2) RVK_FORM(rvkAdds16_v2);
//
// A driver has one name and one list of parameters in both rooms. What differs between the rooms is no form and stands
// in the units.
#pragma once

#if defined(RVK_ISA)
#define RVK_FORM(name) name##V
#define RVK_ROOM rvk::vecta::RVK_ISA
#else
#define RVK_FORM(name) name##C
#define RVK_ROOM rvk
#endif
