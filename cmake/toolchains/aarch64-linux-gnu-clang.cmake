# 64-bit Arm with clang, against the libraries of Debian's cross compiler.
include(${CMAKE_CURRENT_LIST_DIR}/aarch64-linux-gnu.cmake)
set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)
