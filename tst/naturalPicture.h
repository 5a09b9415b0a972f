// A grey picture such as detectors of corners and edges look at.
#pragma once

#include "functionTest.h"

// Boxes of all sizes in front of each other, each of its own grey and shaded, and noise of a grey level or two.
void drawNaturalPicture(uint8_t* picture, uint32_t width, uint32_t height, size_t stride, RandomBits& random);
