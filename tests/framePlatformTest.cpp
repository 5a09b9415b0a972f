// The platform interfaces as a host has them.
#include "platform/platform.h"

#include <ravik/frame.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

template <class... Values>
std::string logged(int priority, const char* tag, const char* format, Values... values)
{
    testing::internal::CaptureStderr();
    __android_log_print(priority, tag, format, values...);
    return testing::internal::GetCapturedStderr();
}

TEST(FramePlatform, LogLinesGoToStandardError)
{
    EXPECT_EQ(logged(3, "ravik_test", "%s %d", "message", 5), "D/ravik_test: message 5\n");
    EXPECT_EQ(logged(6, "ravik_lib_log", "%s\n", "ends its line itself"), "E/ravik_lib_log: ends its line itself\n");
    EXPECT_EQ(logged(2, "t", "%s", "").substr(0, 2) + logged(4, "t", "%s", "").substr(0, 2) +
                  logged(5, "t", "%s", "").substr(0, 2) + logged(7, "t", "%s", "").substr(0, 2),
              "V/I/W/F/");
    EXPECT_EQ(logged(8, "t", "%s", "x"), "?/t: x\n");
    EXPECT_EQ(logged(-1, nullptr, "%s", "x"), "?/: x\n");

    const std::string longLine = logged(3, std::string(9000, 't').c_str(), "%s", std::string(9000, 'm').c_str());
    EXPECT_LE(longLine.size(), 4096u);
    EXPECT_EQ(longLine.substr(longLine.size() - 2), "m\n");
}

TEST(FramePlatform, PropertiesComeFromTheEnvironment)
{
    char value[PROP_VALUE_MAX];
    const std::string longValue(200, 'v');
    setenv("VENDOR_RUNTIME_A_B9", "text", 1);
    setenv("LONG_VALUE", longValue.c_str(), 1);
    EXPECT_EQ(__system_property_get("vendor.runtime.a-b9", value), 4);
    EXPECT_STREQ(value, "text");
    EXPECT_EQ(__system_property_get("long.value", value), PROP_VALUE_MAX - 1);
    EXPECT_EQ(value, longValue.substr(0, PROP_VALUE_MAX - 1));
    EXPECT_EQ(__system_property_get("vendor.runtime.absent", value), 0);
    EXPECT_STREQ(value, "");
    EXPECT_EQ(__system_property_get(std::string(5000, 'n').c_str(), value), 0);
}

TEST(FramePlatform, SharedMemoryIsPageAligned)
{
    void* memory = dspmem_alloc(25, 1, 100);
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(memory) % static_cast<uintptr_t>(sysconf(_SC_PAGESIZE)), 0u);
    dspmem_free(memory);
    EXPECT_EQ(dspmem_alloc(25, 1, 0), nullptr);
    EXPECT_EQ(dspmem_alloc(25, 1, -5), nullptr);
}

} // namespace
