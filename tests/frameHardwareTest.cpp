// What the library makes of the CPU's description of itself.
#include "hardware.h"

#include "dispatch.h"
#include "support/ownProcess.h"
#include "support/random.h"

#include <ravik/frame.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

using namespace rvk;
using namespace test;

namespace {

// A 32-bit Arm phone of eight cores, its first core and its tail.
const std::string kArm32 =
    "processor\t: 0\n"
    "model name\t: ARMv7 Processor rev 4 (v7l)\n"
    "Features\t: half thumb fastmult vfp edsp neon vfpv3 tls vfpv4 idiva idivt vfpd32 lpae evtstrm\n"
    "CPU implementer\t: 0x41\n"
    "CPU architecture: 7\n"
    "CPU part\t: 0xd03\n"
    "\n"
    "Hardware\t: Generic board, 8 cores\n"
    "Serial\t\t: 0000000000000000\n";

// A 64-bit kernel.
const std::string kArm64 =
    "processor\t: 0\n"
    "Features\t: fp asimd evtstrm aes pmull sha1 sha2 crc32 atomics fphp asimdhp cpuid asimdrdm lrcpc dcpop asimddp\n"
    "CPU implementer\t: 0x48\n"
    "CPU architecture: 8\n";

// The same kernel as 32-bit programs see it: the names of both worlds.
const std::string kArm64Compat = "Processor\t: AArch64 Processor rev 2 (aarch64)\n"
                                 "processor\t: 0\n"
                                 "Features\t: fp asimd half thumb fastmult vfp edsp neon vfpv3\n"
                                 "CPU implementer\t: 0x41\n"
                                 "CPU architecture: AArch64\n";

const std::string kX86 = "processor\t: 0\n"
                         "vendor_id\t: GenuineIntel\n"
                         "model name\t: Intel(R) Xeon(R) Processor @ 2.90GHz\n"
                         "flags\t\t: fpu vme de pse sse sse2 ss ht pni pclmulqdq ssse3 fma sse4_1 sse4_2 avx f16c\n"
                         "bugs\t\t:\n";

// An ARMv6 board: VFP, no vectors.
const std::string kArmV6 = "Processor\t: ARMv6-compatible processor rev 7 (v6l)\n"
                           "Features\t: swp half thumb fastmult vfp edsp java tls\n"
                           "CPU implementer\t: 0x41\n"
                           "CPU architecture: 6TEJ\n"
                           "Hardware\t: BCM2835\n";

class TextFile
{
public:
    explicit TextFile(const std::string& text)
    {
        close(mkstemp(m_path));
        std::ofstream(m_path, std::ios::binary) << text;
    }
    ~TextFile() { unlink(m_path); }
    const char* path() const { return m_path; }

private:
    char m_path[32] = "/tmp/ravikCpuInfoXXXXXX";
};

// Runs the detection on a text.
void detect(const std::string& text)
{
    const TextFile file(text);
    const char* saved = cpuInfoPath;
    cpuInfoPath = file.path();
    cpuFacts = {false, ~0u, ~0u};
    rvk_android_cpuInit();
    cpuInfoPath = saved;
    EXPECT_TRUE(cpuFacts.detected);
}

uint32_t featuresOf(const std::string& text)
{
    detect(text);
    return cpuFacts.features;
}

TEST(FrameHardware, RealDevices)
{
    constexpr uint32_t all = kCpuArmV7 | kCpuVfp | kCpuVector;
    EXPECT_EQ(featuresOf(kArm32), all);
    EXPECT_EQ(cpuFacts.implementer, 0x41u);
    EXPECT_EQ(dispatchState.noAccelerator, 0);
    EXPECT_EQ(featuresOf(kArm64), all);
    EXPECT_EQ(cpuFacts.implementer, 0x48u);
    EXPECT_EQ(featuresOf(kArm64Compat), kCpuVfp | kCpuVector);
    EXPECT_EQ(featuresOf(kX86), kCpuVector);
    EXPECT_EQ(cpuFacts.implementer, 0u);
    EXPECT_EQ(featuresOf(kArmV6), kCpuVfp);
    EXPECT_EQ(dispatchState.noAccelerator, 1);
    EXPECT_EQ(featuresOf(kArm32), all);
    EXPECT_EQ(dispatchState.noAccelerator, 0);
}

TEST(FrameHardware, OnlyWholeTokensCount)
{
    const auto features = [](const std::string& tokens) { return featuresOf("Features\t: " + tokens + "\n"); };
    EXPECT_EQ(features("vfpv3 asimdhp fphp neonx xneon"), 0u);
    EXPECT_EQ(features("fp"), kCpuVfp);
    EXPECT_EQ(features("neon"), kCpuVector);
    EXPECT_EQ(features("\t\t half  \t asimd\t"), kCpuVector);
    EXPECT_EQ(featuresOf("flags\t: ssse3 sse4_1 sse4_2x\n"), 0u);
    EXPECT_EQ(featuresOf("CPU architecture: 8"), kCpuArmV7);
    EXPECT_EQ(featuresOf("CPU architecture:  6\n"), 0u);
    EXPECT_EQ(featuresOf("CPU architecture: 99999999999999999999\n"), kCpuArmV7);
}

TEST(FrameHardware, TruncatedAndHostileTexts)
{
    for (const char* nothing : {"", "Features", "Features\t:", "Features\t: "})
        EXPECT_EQ(featuresOf(nothing), 0u) << nothing;
    EXPECT_EQ(featuresOf("Features\t: neon"), kCpuVector); // no line feed at the end
    EXPECT_EQ(featuresOf(std::string("Features\t: half\0neon\n", 21)), 0u);
    EXPECT_EQ(featuresOf(std::string("\0Features\t: neon\n", 17)), 0u); // the name does not begin the line
    EXPECT_EQ(featuresOf("Features\t: " + std::string(3000, 'x') + " neon\n"), kCpuVector);
    const std::string upToTheLimit = "Features\t: " + std::string(4096 - 11 - 5, 'x') + " neon";
    EXPECT_EQ(featuresOf(upToTheLimit), kCpuVector);
    EXPECT_EQ(featuresOf("\n" + upToTheLimit), 0u); // "neo": 4096 bytes are read

    // Every prefix of a real text, and real texts with bytes changed: nothing to crash on (the sanitizers watch).
    for (size_t length = 0; length <= kArm32.size(); length += 7)
        featuresOf(kArm32.substr(0, length));
    Random random(7);
    for (int round = 0; round < 300; round++) {
        std::string text = round % 2 ? kArm32 : kX86;
        for (int change = 0; change < 8; change++)
            text[random.below(static_cast<uint32_t>(text.size()))] = ":\n \t\0F0x"[random.below(8)];
        featuresOf(text);
    }
}

TEST(FrameHardware, FieldExtraction)
{
    const auto field = [](const std::string& text, const char* name) -> std::optional<std::string> {
        const std::vector<char> exact(text.begin(), text.end()); // on the heap, with no terminating zero
        char* value = extract_cpuinfo_field(exact.data(), exact.size(), name);
        if (!value)
            return std::nullopt;
        const std::string copy = value;
        free(value);
        return copy;
    };
    EXPECT_EQ(field("x: 1\nHardware\t: board", "Hardware"), "board");
    EXPECT_EQ(field("model name\t: Hardware\t: fake\nHardware\t: real\n", "Hardware"), "real");
    EXPECT_EQ(field("model name\t: Hardware\t: fake\n", "Hardware"), std::nullopt);
    EXPECT_EQ(field("Hardware\t:\tboard\n", "Hardware"), std::nullopt); // no blank after the colon
    EXPECT_EQ(field("Hardware:board\nHardware\t: late\n", "Hardware"), std::nullopt);
    EXPECT_EQ(field("Hardware\t: \nnext: 1\n", "Hardware"), "");
    EXPECT_EQ(field("Hardware\t: a: b: c\n", "Hardware"), "a: b: c");
    EXPECT_EQ(field("HardwareHardware: x", "Hardware"), "x");
    EXPECT_EQ(field("", "Hardware"), std::nullopt);
    EXPECT_EQ(field("Hard", "Hardware"), std::nullopt);
}

TEST(FrameHardware, UnitsFollowTheText)
{
    const auto units = [](const char* path) {
        cpuInfoPath = path;
        const uint32_t result = rvkAvailableHardware(RAVIK_OP_CPU_PERFORMANCE);
        cpuInfoPath = "/nowhere"; // examined once
        EXPECT_EQ(rvkAvailableHardware(RAVIK_OP_LOW_POWER), result);
        return result;
    };
    inOwnProcess([&] {
        EXPECT_EQ(units(TextFile(kArm32).path()),
                  RAVIK_UNIT_ARM | RAVIK_UNIT_VECTA | RAVIK_UNIT_VFP | RAVIK_UNIT_ARMv7);
    });
    inOwnProcess([&] { EXPECT_EQ(units(TextFile(kX86).path()), RAVIK_UNIT_ARM | RAVIK_UNIT_VECTA); });
    inOwnProcess([&] { EXPECT_EQ(units("/nowhere/cpuinfo"), RAVIK_UNIT_ARM); });
    inOwnProcess([&] { EXPECT_EQ(units("/tmp"), RAVIK_UNIT_ARM); }); // a directory opens, but cannot be read
}

} // namespace
