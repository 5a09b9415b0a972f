# 32-bit Arm with clang, the compiler of Android, against the libraries of Debian's cross compiler.
include(${CMAKE_CURRENT_LIST_DIR}/arm-linux-gnueabihf.cmake)
set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_C_COMPILER_TARGET arm-linux-gnueabihf)
set(CMAKE_CXX_COMPILER_TARGET arm-linux-gnueabihf)
# As Debian's g++ is set up, and Android's clang but for NEON, which the build adds where it belongs.
set(CMAKE_C_FLAGS_INIT "-march=armv7-a -mfpu=vfpv3-d16 -mthumb")
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a -mfpu=vfpv3-d16 -mthumb")
