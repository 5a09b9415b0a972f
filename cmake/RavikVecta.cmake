# The units of src/vecta are compiled once per instruction set, each time into the namespace rvk::vecta::RVK_ISA.
#
# The flags of an instruction set here and the features that the library asks the processor for before it uses that set
# must agree: whoever adds one to this list adds it there.

set(knownInstructionSets "")
if(ravikIsX86)
    set(knownInstructionSets sse42 avx2 avx512)
    set(ravikFlags_sse42 -msse4.2 -mpopcnt)
    set(ravikFlags_avx2 ${ravikFlags_sse42} -mavx2 -mbmi)
    set(ravikFlags_avx512 ${ravikFlags_avx2} -mavx512f -mavx512cd -mavx512bw -mavx512dq -mavx512vl
        -mavx512vbmi -mavx512vbmi2 -mavx512vnni -mavx512vpopcntdq -mavx512bitalg -mgfni)
elseif(ravikIsArm32)
    set(knownInstructionSets neon)
    # clang would pack neighbouring scalar floats into NEON registers, which flush denormals.
    set(ravikFlags_neon -march=armv7-a -mfpu=neon $<$<CXX_COMPILER_ID:Clang>:-fno-slp-vectorize>)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
    set(knownInstructionSets neon)
    set(ravikFlags_neon "")
endif()

# Those of this build, in the order above. A list that names none of this processor's means all of them.
set(RAVIK_INSTRUCTION_SETS "" CACHE STRING "Instruction sets to build vector code for, of: ${knownInstructionSets}; empty: all")
set(ravikInstructionSets "")
foreach(isa IN LISTS knownInstructionSets)
    if(isa IN_LIST RAVIK_INSTRUCTION_SETS)
        list(APPEND ravikInstructionSets ${isa})
    endif()
endforeach()
if(NOT ravikInstructionSets)
    set(ravikInstructionSets ${knownInstructionSets})
endif()

# The same list for C++: an include file with a row RVK_INSTRUCTION_SET(name) each.
list(TRANSFORM ravikInstructionSets REPLACE "(.+)" "RVK_INSTRUCTION_SET(\\1)\n" OUTPUT_VARIABLE rows)
string(JOIN "" rows ${rows})
set(ravikGeneratedDir ${PROJECT_BINARY_DIR}/generated)
file(CONFIGURE OUTPUT ${ravikGeneratedDir}/instructionSets.inc CONTENT "${rows}")

# Compiles `sources` for instruction set `isa` into the object library `target`.
function(ravik_vecta_objects target isa)
    add_library(${target} OBJECT ${ARGN})
    target_link_libraries(${target} PRIVATE ravikLibraryFlags)
    ravik_sanitizer_flags(${isa} sanitizers)
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
    target_compile_definitions(${target} PRIVATE RVK_ISA=${isa})
    target_compile_options(${target} PRIVATE ${ravikFlags_${isa}} ${sanitizers} -fno-exceptions -fno-rtti
        $<$<CONFIG:Release>:-O3>)
endfunction()

# One object library per instruction set, their names in `result`.
function(ravik_add_vecta_objects result)
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/vecta/*.cpp)
    set(targets "")
    if(sources)
        foreach(isa IN LISTS ravikInstructionSets)
            ravik_vecta_objects(ravikVecta_${isa} ${isa} ${sources})
            list(APPEND targets ravikVecta_${isa})
        endforeach()
    endif()
    set(${result} ${targets} PARENT_SCOPE)
endfunction()
