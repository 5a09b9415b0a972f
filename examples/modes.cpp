// The same call as C reference and as vector code, timed, in C++.
#include <ravik/ravik.h>

#include <cstdio>
#include <vector>

int main()
{
    const uint32_t width = 1920, height = 1080;
    const std::vector<uint8_t> before(width * height, 17), after(width * height, 42);
    std::vector<uint8_t> difference(width * height);

    for (const uint32_t unit : {RAVIK_UNIT_ARM, RAVIK_UNIT_VECTA}) {
        rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | unit));
        const uint64_t start = rvkGetTime();
        for (int i = 0; i < 100; i++)
            rvkAbsDiffu8(before.data(), after.data(), width, height, 0, difference.data(), 0);
        std::printf("%-9s %6.1f us\n", unit == RAVIK_UNIT_ARM ? "reference" : "vector", (rvkGetTime() - start) / 100.0);
    }
}
