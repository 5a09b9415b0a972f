// The platform's own interfaces that the library uses: Android's headers where they exist, the same declarations
// elsewhere. On Android liblog, libc and libcdspcall.so define the functions; on other hosts src/platform/host.cpp
// does.
#pragma once

#include <cstdint>

#if __has_include(<android/log.h>)
#include <android/log.h>
#else
enum { ANDROID_LOG_DEBUG = 3, ANDROID_LOG_ERROR = 6 };
extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
#endif

#if __has_include(<sys/system_properties.h>)
#include <sys/system_properties.h>
#else
enum { PROP_VALUE_MAX = 92 };
// Copies the value of a property, cut to PROP_VALUE_MAX with its terminating zero, and returns its length; an absent
// property is empty.
extern "C" int __system_property_get(const char* name, char* value);
#endif

// Memory that the DSP can see. A device without libcdspcall.so has none: there the functions are null.
#if defined(__ANDROID__)
#define RVK_OPTIONAL __attribute__((weak))
#else
#define RVK_OPTIONAL
#endif
extern "C" RVK_OPTIONAL void* dspmem_alloc(int heap, uint32_t flags, int size);
extern "C" RVK_OPTIONAL void dspmem_free(void* address);

// dspmem_alloc where it exists; null where it does not or fails.
inline void* allocateSharedMemory(int heap, uint32_t flags, int size)
{
#if defined(__ANDROID__)
    if (!dspmem_alloc)
        return nullptr;
#endif
    return dspmem_alloc(heap, flags, size);
}
