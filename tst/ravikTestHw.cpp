// HW: what the frame says about itself and the device, and what it does with operation modes.
#include "check.h"
#include "groups.h"
#include "testBuffer.h"

#include <ravik/diff.h>
#include <ravik/frame.h>

#include <algorithm>
#include <cstring>
#include <ctime>

namespace {

constexpr uint32_t kCpuUnits = RAVIK_UNIT_ARM | RAVIK_UNIT_VECTA | RAVIK_UNIT_VFP | RAVIK_UNIT_ARMv7;

void checkVersion(Checks& checks)
{
    char version[8];
    memset(version, '?', sizeof version);
    rvkGetVersion(version, sizeof version);
    checks.expect(strcmp(version, "1.7.1") == 0, "version");
    checks.expect(version[6] == '?' && version[7] == '?', "version writes six bytes");

    memset(version, '?', sizeof version);
    rvkGetVersion(version, 5);
    checks.expect(std::count(version, version + 5, '\0') == 5 && version[5] == '?', "version into five bytes");
    rvkGetVersion(nullptr, 8);
}

void checkTime(Checks& checks)
{
    constexpr uint64_t second = 1000000;
    const uint64_t start = rvkGetTime();
    checks.expect(start / second - static_cast<uint64_t>(time(nullptr)) + 2 <= 4, "time of day");

    const timespec wait{0, 3000000};
    nanosleep(&wait, nullptr);
    const uint64_t waited = rvkGetTime() - start;
    checks.expect(waited >= 2000 && waited < 10 * second, "time passes");
}

void checkUnits(Checks& checks)
{
    const uint32_t cpu = rvkAvailableHardware(RAVIK_OP_CPU_PERFORMANCE);
    checks.expect(cpu & RAVIK_UNIT_ARM, "the CPU is there");
    checks.expect((cpu & ~kCpuUnits) == 0, "a CPU mode finds only the CPU");
    for (const uint32_t unit : {RAVIK_UNIT_ARM, RAVIK_UNIT_VECTA})
        checks.expect(rvkAvailableHardware(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | unit)) == cpu,
                      "expert CPU modes find the same");
    checks.expect((rvkAvailableHardware(RAVIK_OP_PERFORMANCE) & cpu) == cpu, "other modes find the CPU too");
}

// Whether dispatch still leads to an implementation that does its work.
bool dispatchWorks()
{
    constexpr uint32_t width = 176, height = 152;
    RAVIK_TEST_Buffer src1, src2, dst;
    for (RAVIK_TEST_Buffer* buffer : {&src1, &src2, &dst})
        if (!buffer->Shape(MemShape_::packed(width, height, 1), RAVIK_MEM_SHARED, false))
            return false;
    memset(src1.data, 200, src1.blockBytes());
    memset(src2.data, 255, src2.blockBytes());
    rvkAbsDiffu8(src1.window<uint8_t>(), src2.window<uint8_t>(), width, height, 0, dst.window<uint8_t>(), 0);
    return std::all_of(dst.block(), dst.block() + dst.blockBytes(), [](uint8_t pixel) { return pixel == 55; });
}

void checkModes(Checks& checks)
{
    const auto acceptsMode = [](uint32_t mode) {
        return rvkSetOperationMode(static_cast<rvkOperationMode>(mode)) == 0 && dispatchWorks();
    };
    for (unsigned target = 0; target < kTargetIndices; target++)
        checks.expect(!settings.enabled[target] || acceptsMode(static_cast<uint32_t>(operationModeOf(target))),
                      "mode of a target");
    checks.expect(acceptsMode(7), "ordinary modes above 3 run the reference");
    checks.expect(rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | 3)) == -1 && dispatchWorks(),
                  "an expert mode needs one unit");
}

} // namespace

int TEST_HW_Test(int, const char*)
{
    Checks checks("HW");
    checkVersion(checks);
    checkTime(checks);
    checkUnits(checks);
    checkModes(checks);
    return checks.failure();
}
