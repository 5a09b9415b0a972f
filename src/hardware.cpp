#include "hardware.h"

#include "companion.h"
#include "dispatch.h"
#include "log.h"
#include "memory.h"

#include <ravik/frame.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <pthread.h>
#include <string_view>
#include <sys/time.h>
#include <unistd.h>

namespace rvk {

CpuFacts cpuFacts = {};
const char* cpuInfoPath = "/proc/cpuinfo";

namespace {

constexpr char kVersion[] = "1.7.1";
constexpr uint32_t kSameMajorVersion = 4096;

struct FreeText
{
    void operator()(char* text) const { free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

// What one read of at most `capacity` bytes gives; -1 when the file cannot be read.
ssize_t readOnce(const char* path, char* buffer, size_t capacity)
{
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return -1;
    ssize_t length;
    do
        length = read(file, buffer, capacity);
    while (length < 0 && errno == EINTR);
    close(file);
    return length;
}

// Whether a list separated by blanks and tabs has `token` as one of its members.
bool hasToken(const char* list, std::string_view token)
{
    constexpr const char* separators = " \t";
    while (*(list += strspn(list, separators))) {
        const size_t length = strcspn(list, separators);
        if (std::string_view(list, length) == token)
            return true;
        list += length;
    }
    return false;
}

uint32_t featuresOf(const char* buffer, size_t length)
{
    uint32_t features = 0;
    if (const Text architecture{extract_cpuinfo_field(buffer, length, "CPU architecture")}) {
        char* end = nullptr;
        if (strtol(architecture.get(), &end, 10) >= 7 && end != architecture.get())
            features |= kCpuArmV7;
    }
    if (const Text tokens{extract_cpuinfo_field(buffer, length, "Features")}) { // Arm
        if (hasToken(tokens.get(), "vfp") || hasToken(tokens.get(), "fp"))
            features |= kCpuVfp;
        if (hasToken(tokens.get(), "neon") || hasToken(tokens.get(), "asimd"))
            features |= kCpuVector;
    }
    if (const Text tokens{extract_cpuinfo_field(buffer, length, "flags")}) { // x86
        if (hasToken(tokens.get(), "sse4_2"))
            features |= kCpuVector;
    }
    return features;
}

// Emulated and hobby boards: nothing on them can run the DSP or GPU implementations.
bool lacksAccelerator(const char* hardware)
{
    constexpr const char* names[] = {"Goldfish", "Ranchu", "BCM2709", "BCM2835"};
    for (const char* name : names) {
        if (strstr(hardware, name))
            return true;
    }
    return false;
}

} // namespace

char* extract_cpuinfo_field(const char* buffer, size_t length, const char* field)
{
    const std::string_view text(buffer, length);
    size_t name = text.find(field);
    while (name != text.npos && name != 0 && text[name - 1] != '\n')
        name = text.find(field, name + 1);
    if (name == text.npos)
        return nullptr;

    const size_t colon = text.find(':', name + strlen(field));
    if (colon == text.npos || colon + 1 >= length || text[colon + 1] != ' ')
        return nullptr;
    const std::string_view rest = text.substr(colon + 2);
    const std::string_view value = rest.substr(0, rest.find('\n'));

    auto* copy = static_cast<char*>(malloc(value.size() + 1));
    if (copy) {
        value.copy(copy, value.size());
        copy[value.size()] = '\0';
    }
    return copy;
}

void rvk_android_cpuInit()
{
    cpuFacts = {};
    char buffer[4096];
    const ssize_t read = readOnce(cpuInfoPath, buffer, sizeof buffer);
    cpuFacts.detected = true;
    if (read < 0)
        return;
    const auto length = static_cast<size_t>(read);

    cpuFacts.features = featuresOf(buffer, length);
    if (const Text implementer{extract_cpuinfo_field(buffer, length, "CPU implementer")})
        cpuFacts.implementer = static_cast<uint32_t>(strtoul(implementer.get(), nullptr, 0));
    const Text hardware{extract_cpuinfo_field(buffer, length, "Hardware")};
    dispatchState.noAccelerator = hardware && lacksAccelerator(hardware.get());
}

void detectCpuOnce()
{
    static pthread_once_t once = PTHREAD_ONCE_INIT;
    pthread_once(&once, rvk_android_cpuInit);
}

bool isCpuOnly(rvkOperationMode mode)
{
    if (!isExpert(mode))
        return mode == RAVIK_OP_CPU_PERFORMANCE;
    const uint32_t unit = expertUnit(mode);
    return unit == 1 || unit == RAVIK_UNIT_ARM || unit == RAVIK_UNIT_VECTA;
}

namespace {

uint32_t cpuUnits()
{
    uint32_t units = 0;
    if (cpuFacts.detected)
        units |= RAVIK_UNIT_ARM;
    if (cpuFacts.features & kCpuVector)
        units |= RAVIK_UNIT_VECTA;
    if (cpuFacts.features & kCpuVfp)
        units |= RAVIK_UNIT_VFP;
    if (cpuFacts.features & kCpuArmV7)
        units |= RAVIK_UNIT_ARMv7;
    return units;
}

bool parseVersion(const char* text, int& major)
{
    int minor = 0;
    int patch = 0;
    return sscanf(text, "%d.%d.%d", &major, &minor, &patch) == 3;
}

bool hasSameMajorVersion(const Companion& companion)
{
    auto* getVersion = companion.function<void(char*, uint32_t)>("rvkGetVersion");
    if (!getVersion)
        return false;
    char version[40] = "";
    getVersion(version, sizeof version);
    version[sizeof version - 1] = '\0';

    int localMajor = 0;
    int remoteMajor = 0;
    return parseVersion(kVersion, localMajor) && parseVersion(version, remoteMajor) && localMajor == remoteMajor;
}

uint32_t companionUnits(const Companion& companion, rvkOperationMode mode)
{
    if (auto* query = companion.function<uint32_t(rvkOperationMode)>("rvkAvailableHWComponent"))
        return query(mode);
    logLibraryWarning("Warning: AvailableHwComponent is %p. %s", static_cast<void*>(nullptr), Companion::loaderError());
    if (auto* query = companion.function<uint32_t()>("rvkAvailableHardware"))
        return query();
    logLibraryError("Error: AvailableHw is %p. %s", static_cast<void*>(nullptr), Companion::loaderError());
    return 0;
}

void installSharedMemoryHooks(const Companion& companion)
{
    if (auto* hook = companion.functionInWord<SharedMemAlloc>("rvkSharedMemAllocR_"))
        sharedMemAllocHook = hook;
    if (auto* hook = companion.functionInWord<SharedMemFree>("rvkSharedMemFreeR_"))
        sharedMemFreeHook = hook;
}

} // namespace

} // namespace rvk

uint32_t rvkAvailableHardware(rvkOperationMode mode)
{
    using namespace rvk;
    detectCpuOnce();
    readRuntimeLogProperty();
    uint32_t units = cpuUnits();
    if (isCpuOnly(mode))
        return units;

    if (Companion companion; companion) {
        if (hasSameMajorVersion(companion))
            units |= kSameMajorVersion;
        units |= companionUnits(companion, mode);
        installSharedMemoryHooks(companion);
        companion.keepIn(companionSession.library);
    }
    companionSession.gpu = (units & RAVIK_UNIT_GPU) != 0;
    companionSession.dsp = (units & RAVIK_UNIT_NDSP) != 0;
    return units;
}

void rvkGetVersion(char* version, uint32_t versionLength)
{
    if (!version)
        return;
    if (versionLength < sizeof rvk::kVersion)
        memset(version, 0, versionLength);
    else
        memcpy(version, rvk::kVersion, sizeof rvk::kVersion);
}

uint64_t rvkGetTime(void)
{
    timeval now;
    gettimeofday(&now, nullptr);
    return static_cast<uint64_t>(now.tv_sec) * 1000000 + static_cast<uint64_t>(now.tv_usec);
}

uint64_t rvkX6GetClk(void)
{
    const rvk::Companion companion;
    auto* clock = companion.function<uint64_t()>("rvkX6GetClk");
    return clock ? clock() : 0;
}
