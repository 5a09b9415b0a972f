// Histograms of oriented gradients of a drawn scene as strokes on standard output, an SVG: in each cell a stroke along
// each direction of edges, the darker the more of them there are. docs/hog.svg is this.
#include <ravik/hog.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kWidth = 320, kHeight = 192, kCell = 16, kBins = 9;

// A bright disc and a dark triangle.
uint8_t pixelAt(double x, double y)
{
    const bool isDisc = std::hypot(x - 96, y - 96) < 64;
    const bool isTriangle = y < 160 && y - 32 > 2 * std::fabs(x - 240);
    return isDisc ? 230 : isTriangle ? 60 : 150;
}

} // namespace

int main()
{
    std::vector<uint8_t> scene;
    for (uint32_t y = 0; y < kHeight; y++)
        for (uint32_t x = 0; x < kWidth; x++)
            scene.push_back(pixelAt(x + 0.5, y + 0.5));

    rvkHOG* hog;
    if (rvkHOGInit(RAVIK_HOG_DALAL, kCell, 1, 1, kBins, &hog) != RAVIK_SUCCESS) // blocks of one cell
        return 1;
    std::vector<uint16_t> values(kWidth / kCell * (kHeight / kCell) * kBins);
    const rvkStatus status = rvkExtractHOGu16(hog, scene.data(), kWidth, kHeight, 0, values.data(), 0);
    rvkHOGDeInit(hog);
    if (status != RAVIK_SUCCESS)
        return 1;

    constexpr int levels = 4;
    std::string strokes[levels];
    for (size_t i = 0; i < values.size(); i++) {
        const int level = values[i] * levels / 32769;
        if (values[i] < 4096)
            continue;
        const size_t cell = i / kBins, across = kWidth / kCell;
        const double x = (static_cast<double>(cell % across) + 0.5) * kCell;
        const double y = (static_cast<double>(cell / across) + 0.5) * kCell;
        const double angle = (static_cast<double>(i % kBins) + 0.5) * M_PI / kBins + M_PI / 2; // across the gradient
        const double dx = std::cos(angle) * kCell * 0.46, dy = std::sin(angle) * kCell * 0.46;
        char stroke[64];
        snprintf(stroke, sizeof stroke, "M%.1f %.1fL%.1f %.1f", x - dx, y - dy, x + dx, y + dy);
        strokes[level] += stroke;
    }

    printf("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %u %u\" width=\"%u\" height=\"%u\">\n", kWidth,
           kHeight, 2 * kWidth, 2 * kHeight);
    printf("<rect width=\"%u\" height=\"%u\" fill=\"#d8d8d8\"/>\n", kWidth, kHeight);
    printf("<circle cx=\"96\" cy=\"96\" r=\"64\" fill=\"#f8f8f8\"/>\n");
    printf("<path d=\"M240 32L304 160L176 160Z\" fill=\"#a8a8a8\"/>\n");
    for (int level = 0; level < levels; level++)
        printf("<path d=\"%s\" stroke=\"#a00000\" stroke-opacity=\"%.2f\" stroke-width=\"1.2\" fill=\"none\"/>\n",
               strokes[level].c_str(), (level + 1.0) / levels);
    printf("</svg>\n");
}
