// What the reference and the vector implementation of the Hough transforms share.
#pragma once

#include <ravik/hough.h>

#include <cstddef>

namespace rvk {

// ---- lines ---------------------------------------------------------------------------------------------------------

// One angle: a pixel votes for bin (x * c + y * s + 16384) >> 15.
struct HoughAngle
{
    int32_t c, s;
};
HoughAngle houghAngle(uint32_t k, uint32_t nAngles, float32_t rhoStep);

// No bin that pixels vote for is farther from bin 0, nor are the neighbours of one.
int32_t houghReach(uint32_t width, uint32_t height, float32_t rhoStep);

// Whether the bins of all angles have a size that 32 bits hold.
bool houghBinsFit(uint32_t nAngles, int32_t reach);

// Whether a bin has more votes than those of its neighbours that come before it and no fewer than the others.
// bins.zeroOf(k)[r] are the votes for bin r of angle k, of bins.nAngles.
template <class Bins>
bool isHoughPeak(const Bins& bins, uint32_t k, int32_t r)
{
    const uint32_t own = bins.zeroOf(k)[r];
    const auto isAbove = [&](uint32_t otherK, int32_t otherR) {
        if (otherK == k && otherR == r)
            return true;
        const bool isBefore = otherK < k || (otherK == k && otherR < r);
        const uint32_t other = bins.zeroOf(otherK)[otherR];
        return isBefore ? own > other : own >= other;
    };
    return isAbove(k, r - 1) && isAbove(k, r + 1) && (k > 0 ? isAbove(k - 1, r) : isAbove(bins.nAngles - 1, -r)) &&
           (k + 1 < bins.nAngles ? isAbove(k + 1, r) : isAbove(0, -r));
}

// Declared in functions.h, too.
void irvkHoughAccumulateAreaC(const uint32_t* pixels, uint32_t nPixels, int32_t c, int32_t s, uint32_t* votes);

// The first lines in their order, of those that are offered in any order, in the list of the caller.
class StrongestLines
{
public:
    StrongestLines(rvkLine* lines, uint32_t capacity) : m_lines(lines), m_capacity(capacity) {}

    void offer(uint32_t k, int32_t r, uint32_t votes);
    // Puts them in order. Returns how many there are.
    uint32_t finish(uint32_t nAngles, float32_t rhoStep);

private:
    rvkLine* m_lines; // a heap whose first element is the last in the order; with the bits of r and k for rho and theta
    uint32_t m_capacity, m_count = 0;
};

// ---- circles -------------------------------------------------------------------------------------------------------

// The direction of an edge pixel's gradient, in units of 2^-16.
struct HoughDirection
{
    int32_t u, v;
};
HoughDirection houghDirection(int32_t dx, int32_t dy);

struct HoughCentre
{
    uint32_t x, y, score;
};

// What the caller wants of circles.
struct CircleChoice
{
    uint32_t minRadius, maxRadius; // the latter not above what the picture has room for
    uint32_t centerThreshold, minDistance;
};

// With radii that are no larger than any distance in the picture by more than a pixel or two.
CircleChoice circleChoice(uint32_t width, uint32_t height, uint32_t minRadius, uint32_t maxRadius,
                          uint32_t centerThreshold, uint32_t minDistance);

// By score, then in raster order.
void sortCentres(HoughCentre* centres, size_t count);

// Whether the centre is no nearer than minDistance to one of these circles.
bool isFarEnough(const HoughCentre& centre, const rvkCircle* circles, uint32_t count, uint32_t minDistance);

// The radius of the best support: counts[i] edge pixels are at a distance of minRadius + i.
rvkCircle bestCircle(const HoughCentre& centre, const CircleChoice& choice, const uint32_t* counts);

// The circles around centres, which are put in order. findCircle(centre) gives the best one around a centre. Returns how
// many circles there are.
template <class FindCircle>
uint32_t chooseCircles(HoughCentre* centres, size_t nCentres, const CircleChoice& choice, rvkCircle* circles,
                       uint32_t nCirclesMax, FindCircle findCircle)
{
    sortCentres(centres, nCentres);
    uint32_t found = 0;
    for (size_t i = 0; i < nCentres && found < nCirclesMax; ++i) {
        if (!isFarEnough(centres[i], circles, found, choice.minDistance))
            continue;
        const rvkCircle circle = findCircle(centres[i]);
        if (circle.support >= choice.centerThreshold)
            circles[found++] = circle;
    }
    return found;
}

} // namespace rvk
