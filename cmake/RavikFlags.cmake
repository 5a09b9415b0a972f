# ravikFlags and ravikLibraryFlags: what every object of the project is compiled with.
#
# Floats must have the same bits on every target, so no contraction into fused operations and no fast-math, anywhere.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
endif()

set(ravikIsArm32 FALSE)
set(ravikIsX86 FALSE)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    set(ravikIsX86 TRUE)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    set(ravikIsArm32 TRUE)
endif()

# The flags of the sanitizers that `part` of the build is compiled with: RAVIK_SANITIZE_<part> where that is set,
# otherwise all of RAVIK_SANITIZE. Parts are "scalar" (the library without its vector units), the name of an instruction
# set, and "programs".
function(ravik_sanitizer_flags part result)
    set(sanitizers "${RAVIK_SANITIZE}")
    if(DEFINED RAVIK_SANITIZE_${part})
        set(sanitizers "${RAVIK_SANITIZE_${part}}")
    endif()
    set(flags "")
    if(sanitizers)
        list(APPEND flags -fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        if(sanitizers MATCHES "undefined")
            list(APPEND flags -fsanitize=float-cast-overflow)
        endif()
        if(CMAKE_CXX_COMPILER_ID MATCHES Clang) # the checks keep loops from being vectorized that are asked to be
            list(APPEND flags -Wno-pass-failed)
        endif()
    endif()
    if(RAVIK_FUZZ)
        list(APPEND flags -fsanitize=fuzzer-no-link)
    endif()
    set(${result} ${flags} PARENT_SCOPE)
endfunction()

set(ravikSanitizerLinkFlags "")
if(RAVIK_SANITIZE)
    set(ravikSanitizerLinkFlags -fsanitize=${RAVIK_SANITIZE})
endif()
if(RAVIK_FUZZ)
    list(APPEND ravikSanitizerLinkFlags -fsanitize=fuzzer-no-link)
endif()

# Flags of the library's own objects, whose sanitizers are those of their part.
add_library(ravikLibraryFlags INTERFACE)
target_compile_options(ravikLibraryFlags INTERFACE
    -Wall -Wextra -Wshadow -Wpedantic $<$<BOOL:${RAVIK_WERROR}>:-Werror>
    -ffp-contract=off -fno-fast-math)

# Flags of the programs.
ravik_sanitizer_flags(programs ravikProgramSanitizerFlags)
add_library(ravikFlags INTERFACE)
target_link_libraries(ravikFlags INTERFACE ravikLibraryFlags)
target_compile_options(ravikFlags INTERFACE ${ravikProgramSanitizerFlags})
target_link_options(ravikFlags INTERFACE ${ravikSanitizerLinkFlags})

# The reference on 32-bit Arm is plain scalar IEEE arithmetic; NEON, which flushes denormal floats, is for vecta alone.
set(ravikScalarFlags "")
if(ravikIsArm32)
    set(ravikScalarFlags -march=armv7-a -mfpu=vfpv3-d16)
endif()
