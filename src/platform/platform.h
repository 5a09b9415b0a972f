// The platform's own interfaces that the library uses: Android's headers where they exist, the same declarations elsewhere.
// On Android liblog, libc and libcdspcall.so define the functions; on other hosts src/platform/host.cpp does.
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

// Memory that the DSP can see.
extern "C" void* dspmem_alloc(int heap, uint32_t flags, int size);
extern "C" void dspmem_free(void* address);
