# Reads what an Android build compiles, without the NDK: clang for 32-bit Arm with NEON, __ANDROID__ defined, against
# the headers of Debian's cross compiler. Nothing is linked; build the target androidCheck.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_C_COMPILER_TARGET arm-linux-gnueabihf)
set(CMAKE_CXX_COMPILER_TARGET arm-linux-gnueabihf)
set(CMAKE_C_FLAGS_INIT "-march=armv7-a -mfpu=neon -mthumb -D__ANDROID__")
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a -mfpu=neon -mthumb -D__ANDROID__")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_TRY_COMPILE_CONFIGURATION Release) # that of the preset makes no objects
set(ANDROID TRUE)

# There are no objects to put into archives.
get_property(isTrial GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT isTrial)
    set(CMAKE_CXX_ARCHIVE_CREATE "\"${CMAKE_COMMAND}\" -E touch <TARGET>")
    set(CMAKE_CXX_ARCHIVE_FINISH "")
endif()
