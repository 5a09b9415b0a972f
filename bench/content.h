// What the benchmark's inputs contain. Everything is the same on every machine and in every run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

// Fills with random values: integers of the full range, floats in [0, 256).
void fillRandom(uint8_t* data, size_t bytes);
void fillRandom(float* data, size_t values);

// A grey picture with the statistics of a photograph, values in [0, 255]. Work that depends on the content takes other
// ways through it than through random values, of which each differs from its neighbours: most of it is smooth.
//
// It is made of what makes pictures: opaque things of all sizes that hide each other, as many of a size as keep the
// picture alike at all scales (which gives the spectrum 1/f and its edges); each has its own brightness and falls off
// in its own light, has a texture or none, an outline in focus or out of it; then come the lens and the sensor's noise.
// The `seed` chooses among pictures.
std::vector<float> drawNaturalPicture(uint32_t width, uint32_t height, uint32_t seed);

} // namespace bench
